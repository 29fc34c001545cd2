// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/TesseractRecognizer.h"

#include "Mossbank/Platform/Linux/TesseractLanguages.h"
#include "MossbankCore/Support/Failure.h"

#include <QImage>
#include <QMutex>
#include <QSemaphore>
#include <QThread>

#include <locale.h>
#include <omp.h>
#include <tesseract/baseapi.h>
#include <tesseract/resultiterator.h>

#include <algorithm>
#include <list>
#include <utility>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

constexpr int kScreenDotsPerInch = 96;

/// What makes an engine good for a picture and not for another.
struct EngineKind {
    QString languages;
    bool correctsLanguage = false;

    friend bool operator==(const EngineKind&, const EngineKind&) = default;
};

struct Engine {
    EngineKind kind;
    tesseract::TessBaseAPI api;
};

/// Makes this thread, and no other, one in which Tesseract works well: numbers in its model files
/// have a point whatever the user's locale, and one thread a picture is faster than several that
/// wait for each other line by line.
class ThreadSettings {
public:
    ThreadSettings()
        : m_classic(::newlocale(LC_ALL_MASK, "C", nullptr))
        , m_previous(::uselocale(m_classic))
        , m_levels(omp_get_max_active_levels())
    {
        omp_set_max_active_levels(0);
    }
    ~ThreadSettings()
    {
        omp_set_max_active_levels(m_levels);
        ::uselocale(m_previous);
        ::freelocale(m_classic);
    }
    Q_DISABLE_COPY_MOVE(ThreadSettings)

private:
    locale_t m_classic;
    locale_t m_previous;
    int m_levels;
};

/// Null when a model is missing.
std::unique_ptr<Engine> load(const EngineKind& kind)
{
    auto engine = std::make_unique<Engine>();
    engine->kind = kind;
    std::vector<std::string> names = {"debug_file"};
    std::vector<std::string> values = {"/dev/null"};
    if (!kind.correctsLanguage) {
        names.insert(names.end(), {"load_system_dawg", "load_freq_dawg"});
        values.insert(values.end(), {"0", "0"});
    }
    const int failed =
        engine->api.Init(nullptr, kind.languages.toUtf8().constData(), tesseract::OEM_LSTM_ONLY,
                         nullptr, 0, &names, &values, false);
    if (failed)
        return nullptr;
    // It starts with those that it finds and passes over the rest.
    std::vector<std::string> loaded;
    engine->api.GetLoadedLanguagesAsVector(&loaded);
    for (const QString& language : kind.languages.split(u'+')) {
        if (std::ranges::find(loaded, language.toStdString()) == loaded.end())
            return nullptr;
    }
    return engine;
}

QStringList linesOf(tesseract::TessBaseAPI& api)
{
    QStringList lines;
    const std::unique_ptr<tesseract::ResultIterator> line(api.GetIterator());
    if (!line)
        return lines;
    do {
        const std::unique_ptr<char[]> text(line->GetUTF8Text(tesseract::RIL_TEXTLINE));
        const QString read = QString::fromUtf8(text.get()).trimmed();
        if (!read.isEmpty())
            lines.append(read);
    } while (line->Next(tesseract::RIL_TEXTLINE));
    return lines;
}

QStringList read(Engine& engine, const QImage& image)
{
    const QImage grey = image.convertToFormat(QImage::Format_Grayscale8);
    engine.api.SetPageSegMode(tesseract::PSM_AUTO);
    engine.api.SetImage(grey.constBits(), grey.width(), grey.height(), 1,
                        static_cast<int>(grey.bytesPerLine()));
    engine.api.SetSourceResolution(kScreenDotsPerInch);
    if (engine.api.Recognize(nullptr) != 0)
        throw Failure(u"The text in the picture could not be read."_s);
    QStringList lines = linesOf(engine.api);
    engine.api.Clear();
    return lines;
}

} // namespace

/// The engines that are loaded. Loading one takes far longer than reading a line, and each holds
/// tens of megabytes.
class TesseractRecognizer::Engines {
public:
    Engines()
        : m_free(std::clamp(QThread::idealThreadCount(), 2, 4))
    {
    }

    QStringList read(const QImage& image, const Options& options)
    {
        const QSemaphoreReleaser place((m_free.acquire(), m_free));
        const ThreadSettings settings;
        std::unique_ptr<Engine> engine = take({languages(options), options.correctsLanguage});
        QStringList lines = mossbank::read(*engine, image);
        const QMutexLocker lock(&m_mutex);
        m_idle.push_front(std::move(engine));
        while (m_idle.size() > kMaxIdle)
            m_idle.pop_back();
        return lines;
    }

private:
    static constexpr std::size_t kMaxIdle = 2;

    QString languages(const Options& options)
    {
        QStringList languages;
        if (options.languages) {
            for (const QString& code : *options.languages)
                languages.append(tesseractLanguage(code));
            languages.removeAll(QString());
            languages.removeDuplicates();
        }
        if (languages.isEmpty())
            languages = languagesOfUser();
        return languages.join(u'+');
    }

    /// Those that are installed. English has to be.
    QStringList languagesOfUser()
    {
        const QMutexLocker lock(&m_mutex);
        if (!m_ofUser.isEmpty())
            return m_ofUser;
        std::vector<std::string> installed;
        if (const auto english = load({u"eng"_s, false}))
            english->api.GetAvailableLanguagesAsVector(&installed);
        for (const QString& language : tesseractLanguagesOfUser()) {
            if (std::ranges::find(installed, language.toStdString()) != installed.end())
                m_ofUser.append(language);
        }
        return m_ofUser.isEmpty() ? QStringList{u"eng"_s} : m_ofUser;
    }

    std::unique_ptr<Engine> take(const EngineKind& kind)
    {
        {
            const QMutexLocker lock(&m_mutex);
            const auto isMeant = [&](const auto& engine) {
                return engine->kind == kind;
            };
            if (const auto found = std::ranges::find_if(m_idle, isMeant); found != m_idle.end()) {
                auto engine = std::move(*found);
                m_idle.erase(found);
                return engine;
            }
        }
        auto engine = load(kind);
        if (!engine)
            throw Failure(whyNot(kind));
        return engine;
    }

    /// Tesseract does not tell which of several languages it missed.
    static QString whyNot(const EngineKind& kind)
    {
        QStringList packages;
        for (const QString& language : kind.languages.split(u'+')) {
            if (!load({language, kind.correctsLanguage}))
                packages.append(tesseractPackage(language));
        }
        return packages.isEmpty()
                   ? u"The text recogniser could not be started."_s
                   : u"Reading text needs the package %1, which is not installed."_s.arg(
                         packages.join(u", "_s));
    }

    QSemaphore m_free;
    QMutex m_mutex;
    std::list<std::unique_ptr<Engine>> m_idle;
    QStringList m_ofUser;
};

TesseractRecognizer::TesseractRecognizer()
    : m_engines(std::make_unique<Engines>())
{
}

TesseractRecognizer::~TesseractRecognizer() = default;

QStringList TesseractRecognizer::recognize(const QImage& image, const Options& options)
{
    return image.isNull() ? QStringList() : m_engines->read(image, options);
}

} // namespace mossbank
