// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/RootPicture.h"

#include "MossbankCore/Support/Failure.h"

#include <QColor>
#include <QSysInfo>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

constexpr quint32 kAllPlanes = 0xffffffff;
/// A quiet grey: what stands out would look like something on the screen.
constexpr QRgb kCover = qRgb(0x30, 0x30, 0x30);
constexpr quint16 kCover16 = 0x3186; // the same in five, six and five bits
constexpr quint32 kCover30 = 0xc0u << 20 | 0xc0u << 10 | 0xc0u; // and in ten each

struct LentSegment {
    std::shared_ptr<ShmPool> pool;
    std::unique_ptr<ShmSegment> segment;
};

void giveSegmentBack(void* lent)
{
    const std::unique_ptr<LentSegment> owner(static_cast<LentSegment*>(lent));
    owner->pool->giveBack(std::move(owner->segment));
}

const xcb_visualtype_t* rootVisual(const xcb_screen_t& screen)
{
    for (auto depths = xcb_screen_allowed_depths_iterator(&screen); depths.rem > 0;
         xcb_depth_next(&depths)) {
        for (auto visuals = xcb_depth_visuals_iterator(depths.data); visuals.rem > 0;
             xcb_visualtype_next(&visuals)) {
            if (visuals.data->visual_id == screen.root_visual)
                return visuals.data;
        }
    }
    return nullptr;
}

int bitsPerPixel(const xcb_setup_t* setup, quint8 depth)
{
    for (auto formats = xcb_setup_pixmap_formats_iterator(setup); formats.rem > 0;
         xcb_format_next(&formats)) {
        if (formats.data->depth == depth)
            return formats.data->bits_per_pixel;
    }
    return 0;
}

template <typename Pixel>
void fill(uchar* line, const QRect& rect, qsizetype bytesPerLine, Pixel pixel)
{
    for (int row = 0; row < rect.height(); ++row, line += bytesPerLine)
        std::fill_n(reinterpret_cast<Pixel*>(line) + rect.x(), rect.width(), pixel);
}

} // namespace

RootPicture::RootPicture(const X11Connection& connection, std::shared_ptr<ShmPool> pool,
                         const QRect& area)
    : m_connection(connection)
    , m_pool(std::move(pool))
    , m_area(area)
    , m_format(formatOf(connection))
{
    constexpr qsizetype kLineUnit = 4;
    const qsizetype bytesPerPixel = m_format == QImage::Format_RGB16 ? 2 : 4;
    m_bytesPerLine = (area.width() * bytesPerPixel + kLineUnit - 1) / kLineUnit * kLineUnit;
    if (connection.hasShm()) {
        m_segment =
            m_pool->take(connection, static_cast<std::size_t>(m_bytesPerLine * area.height()));
    }
    const auto x = static_cast<qint16>(area.x());
    const auto y = static_cast<qint16>(area.y());
    const auto width = static_cast<quint16>(area.width());
    const auto height = static_cast<quint16>(area.height());
    if (m_segment) {
        m_sharedAsked =
            xcb_shm_get_image(connection, connection.root(), x, y, width, height, kAllPlanes,
                              XCB_IMAGE_FORMAT_Z_PIXMAP, m_segment->id(), 0);
    } else {
        m_plainAsked = xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, connection.root(), x, y,
                                     width, height, kAllPlanes);
    }
}

RootPicture::~RootPicture()
{
    if (m_isAwaited && m_segment)
        m_connection.reply<xcb_shm_get_image_reply_t>(m_sharedAsked);
    else if (m_isAwaited)
        xcb_discard_reply(m_connection, m_plainAsked.sequence);
    if (m_segment)
        giveUpSegment();
}

void RootPicture::giveUpSegment()
{
    // A server that is late still writes into it, uncovered: then nobody gets it again. It lets
    // go of it only after it has written.
    if (m_connection.isSilent()) {
        m_segment->detach(m_connection);
        m_segment.reset();
    } else {
        m_pool->giveBack(std::move(m_segment));
    }
}

void RootPicture::wait()
{
    m_isAwaited = false;
    bool hasCome = false;
    if (m_segment) {
        hasCome = m_connection.reply<xcb_shm_get_image_reply_t>(m_sharedAsked) != nullptr;
        m_data = m_segment->data();
    } else {
        m_plain = m_connection.reply<xcb_get_image_reply_t>(m_plainAsked);
        hasCome =
            m_plain && xcb_get_image_data_length(m_plain.get()) >= m_bytesPerLine * m_area.height();
        m_data = hasCome ? xcb_get_image_data(m_plain.get()) : nullptr;
    }
    m_connection.requireAlive();
    if (!hasCome)
        throw Failure(u"The X server did not give a picture of the screen."_s);
}

QImage RootPicture::take(const QRegion& covered)
{
    cover(covered & m_area);
    QImage image = wrap();
    return m_format == QImage::Format_RGB32 ? image : image.convertToFormat(QImage::Format_RGB32);
}

QImage::Format RootPicture::formatOf(const X11Connection& connection)
{
    const xcb_screen_t& screen = connection.screen();
    const xcb_setup_t* const setup = xcb_get_setup(connection);
    const xcb_visualtype_t* const visual = rootVisual(screen);
    const int bits = bitsPerPixel(setup, screen.root_depth);
    const bool isLittle = setup->image_byte_order == XCB_IMAGE_ORDER_LSB_FIRST;
    const bool isOurOrder = isLittle == (QSysInfo::ByteOrder == QSysInfo::LittleEndian);
    const quint32 red = visual && isOurOrder ? visual->red_mask : 0;
    if (bits == 32 && red == 0x00ff0000)
        return QImage::Format_RGB32;
    if (bits == 32 && red == 0x3ff00000)
        return QImage::Format_RGB30;
    if (bits == 16 && red == 0xf800)
        return QImage::Format_RGB16;
    throw Failure(
        u"Pictures of a screen with %1 bits of colour in this order are not supported."_s.arg(
            screen.root_depth));
}

QImage RootPicture::wrap()
{
    // The image owns what it lies in: it may be the last to know of it.
    QImageCleanupFunction cleanup = std::free;
    void* owned = nullptr;
    if (m_segment) {
        cleanup = giveSegmentBack;
        owned = new LentSegment{m_pool, std::move(m_segment)};
    } else {
        owned = m_plain.release();
    }
    QImage image(m_data, m_area.width(), m_area.height(), m_bytesPerLine, m_format, cleanup, owned);
    if (image.isNull())
        cleanup(owned);
    return image;
}

void RootPicture::cover(const QRegion& region) const
{
    for (const QRect& part : region) {
        const QRect rect = part.translated(-m_area.topLeft());
        uchar* const line = m_data + rect.y() * m_bytesPerLine;
        if (m_format == QImage::Format_RGB16)
            fill(line, rect, m_bytesPerLine, kCover16);
        else if (m_format == QImage::Format_RGB30)
            fill(line, rect, m_bytesPerLine, kCover30);
        else
            fill(line, rect, m_bytesPerLine, kCover);
    }
}

} // namespace mossbank
