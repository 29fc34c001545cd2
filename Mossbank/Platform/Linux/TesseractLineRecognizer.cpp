// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/TesseractLineRecognizer.h"

#include "Mossbank/Platform/Linux/TesseractLanguages.h"
#include "MossbankCore/Support/Failure.h"

#include <QElapsedTimer>
#include <QImage>
#include <QMutex>
#include <QTimer>

#include <locale.h>
#include <malloc.h>
#include <omp.h>
#include <tesseract/baseapi.h>
#include <tesseract/resultiterator.h>

#include <algorithm>
#include <list>
#include <utility>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

/// Of a line that is scaled to the height that recognisers like best.
constexpr int kDotsPerInch = 150;

/// What makes an engine good for a line and not for another.
struct EngineKind {
    QString language;
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
        , m_previous(m_classic ? ::uselocale(m_classic) : nullptr)
        , m_levels(omp_get_max_active_levels())
    {
        omp_set_max_active_levels(0);
    }
    ~ThreadSettings()
    {
        omp_set_max_active_levels(m_levels);
        if (m_classic) {
            ::uselocale(m_previous);
            ::freelocale(m_classic);
        }
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
    // Whether letters are all equally wide would be found out to tell words apart, which the
    // network does without.
    std::vector<std::string> names = {"debug_file", "textord_disable_pitch_test"};
    std::vector<std::string> values = {"/dev/null", "1"};
    if (!kind.correctsLanguage) {
        names.insert(names.end(), {"load_system_dawg", "load_freq_dawg"});
        values.insert(values.end(), {"0", "0"});
    }
    const int failed =
        engine->api.Init(nullptr, kind.language.toUtf8().constData(), tesseract::OEM_LSTM_ONLY,
                         nullptr, 0, &names, &values, false);
    return failed ? nullptr : std::move(engine);
}

QList<RecognizedWord> wordsOf(tesseract::TessBaseAPI& api)
{
    QList<RecognizedWord> words;
    const std::unique_ptr<tesseract::ResultIterator> word(api.GetIterator());
    if (!word)
        return words;
    do {
        const std::unique_ptr<char[]> text(word->GetUTF8Text(tesseract::RIL_WORD));
        const QString read = QString::fromUtf8(text.get()).trimmed();
        if (!read.isEmpty())
            words.append({read, word->Confidence(tesseract::RIL_WORD)});
    } while (word->Next(tesseract::RIL_WORD));
    return words;
}

QList<RecognizedWord> read(Engine& engine, const QImage& line)
{
    engine.api.SetPageSegMode(tesseract::PSM_SINGLE_LINE);
    // What is handed over is a line. Where small letters touch, few outlines are left that look
    // like letters, and the whole of it would be dropped as dirt on the page. What is short may be
    // an icon.
    constexpr int kLong = 4;
    const bool isLong = line.width() > kLong * line.height();
    engine.api.SetVariable("textord_noise_rejrows", isLong ? "0" : "1");
    engine.api.SetImage(line.constBits(), line.width(), line.height(), 1,
                        static_cast<int>(line.bytesPerLine()));
    engine.api.SetSourceResolution(kDotsPerInch);
    if (engine.api.Recognize(nullptr) != 0)
        throw Failure(u"The text in the picture could not be read."_s);
    QList<RecognizedWord> words = wordsOf(engine.api);
    engine.api.Clear();
    return words;
}

} // namespace

/// The engines that are loaded. Loading one takes far longer than reading a line, and each holds
/// some fifteen megabytes. So they stay while pictures are read one after the other; in between one
/// is kept, for the lines that the next picture begins with.
class TesseractLineRecognizer::Engines : public QObject {
public:
    Engines()
    {
        m_untilThinnedOut.setSingleShot(true);
        connect(&m_untilThinnedOut, &QTimer::timeout, this, &Engines::thinOut);
    }

    QList<RecognizedWord> read(const QImage& line, const EngineKind& kind)
    {
        const ThreadSettings settings;
        std::unique_ptr<Engine> engine = take(kind);
        QList<RecognizedWord> words = mossbank::read(*engine, line);
        std::unique_ptr<Engine> tooMany;
        const QMutexLocker lock(&m_mutex);
        m_sinceUse.start();
        if (!std::exchange(m_isWaiting, true))
            QMetaObject::invokeMethod(this, &Engines::wait, Qt::QueuedConnection);
        const bool isExpected = m_installed.expected.contains(kind.language);
        std::list<std::unique_ptr<Engine>>& idle = isExpected ? m_idle : m_idleOthers;
        idle.push_front(std::move(engine));
        if (idle.size() > (isExpected ? kMostIdle : kMostIdleOthers)) {
            tooMany = std::move(idle.back());
            idle.pop_back();
        }
        return words;
    }

    /// English, those of the user's locale and Turkish, then the others: with what is on a screen,
    /// nobody asks for the language first. None where no model is installed.
    LineLanguages installed()
    {
        const QMutexLocker lock(&m_mutex);
        if (!m_installed.expected.isEmpty())
            return m_installed;
        QStringList all = models();
        // What tells the direction of writing, formulas and whole scripts are no languages.
        all.removeIf([](const QString& model) {
            return model == u"osd"_s || model == u"equ"_s || model.contains(u'/') ||
                   model.at(0).isUpper();
        });
        QStringList expected = tesseractLanguagesOfUser();
        expected.removeIf([&](const QString& language) { return !all.contains(language); });
        if (expected.isEmpty())
            expected = all.mid(0, 1);
        expected = expected.mid(0, kMostExpected);
        all.removeIf([&](const QString& model) { return expected.contains(model); });
        m_installed = {expected, all};
        return m_installed;
    }

    void rest()
    {
        {
            const QMutexLocker lock(&m_mutex);
            m_idle.clear();
            m_idleOthers.clear();
            m_installed = {};
        }
        giveBack();
    }

private:
    static constexpr qsizetype kMostExpected = 4;
    /// Of two threads in each of them. What a look for other languages takes drives out none.
    static constexpr std::size_t kMostIdle = 2 * kMostExpected;
    /// Of one thread in four of the others, and of a second one in what was found.
    static constexpr std::size_t kMostIdleOthers = 5;
    static constexpr std::chrono::milliseconds kUntilThinnedOut = std::chrono::seconds(5);

    /// On the thread of the owner, which has an event loop; without one they all stay.
    void wait() { m_untilThinnedOut.start(kUntilThinnedOut); }

    void thinOut()
    {
        std::list<std::unique_ptr<Engine>> unused;
        {
            const QMutexLocker lock(&m_mutex);
            const auto left = kUntilThinnedOut - std::chrono::milliseconds(m_sinceUse.elapsed());
            if (left > std::chrono::milliseconds(0)) {
                m_untilThinnedOut.start(left);
                return;
            }
            m_isWaiting = false;
            const EngineKind first = {m_installed.expected.value(0)};
            const auto kept = std::ranges::find(m_idle, first, &Engine::kind);
            unused.splice(unused.end(), m_idle, m_idle.begin(), kept);
            if (kept != m_idle.end())
                unused.splice(unused.end(), m_idle, std::next(kept), m_idle.end());
            unused.splice(unused.end(), m_idleOthers);
        }
        if (unused.empty())
            return;
        unused.clear();
        giveBack();
    }

    /// Tesseract's dictionaries, and then what was freed: the allocator keeps that for the next
    /// time.
    static void giveBack()
    {
        tesseract::TessBaseAPI::ClearPersistentCache();
        ::malloc_trim(0);
    }

    /// The names of all models that there are.
    static QStringList models()
    {
        const ThreadSettings settings;
        tesseract::TessBaseAPI api;
        // Where the models are is known from then on, also when this one is missing.
        api.Init(nullptr, "eng", tesseract::OEM_LSTM_ONLY);
        std::vector<std::string> names;
        api.GetAvailableLanguagesAsVector(&names);
        QStringList models;
        for (const std::string& name : names)
            models.append(QString::fromStdString(name));
        return models;
    }

    std::unique_ptr<Engine> take(const EngineKind& kind)
    {
        {
            const QMutexLocker lock(&m_mutex);
            for (auto* idle : {&m_idle, &m_idleOthers}) {
                const auto found = std::ranges::find(*idle, kind, &Engine::kind);
                if (found == idle->end())
                    continue;
                auto engine = std::move(*found);
                idle->erase(found);
                return engine;
            }
        }
        auto engine = load(kind);
        if (!engine)
            throw Failure(u"The text recogniser could not be started."_s);
        return engine;
    }

    QMutex m_mutex;
    /// Those used last come first.
    std::list<std::unique_ptr<Engine>> m_idle;
    std::list<std::unique_ptr<Engine>> m_idleOthers;
    LineLanguages m_installed;
    QElapsedTimer m_sinceUse;
    bool m_isWaiting = false;
    QTimer m_untilThinnedOut;
};

TesseractLineRecognizer::TesseractLineRecognizer()
    : m_engines(std::make_unique<Engines>())
{
}

TesseractLineRecognizer::~TesseractLineRecognizer() = default;

LineLanguages TesseractLineRecognizer::languages(const QStringList& codes)
{
    const LineLanguages installed = m_engines->installed();
    QStringList wanted;
    for (const QString& code : codes)
        wanted.append(tesseractLanguage(code));
    wanted.removeAll(QString());
    wanted.removeDuplicates();
    if (wanted.isEmpty() && !installed.expected.isEmpty())
        return installed;
    if (wanted.isEmpty())
        wanted = {u"eng"_s};
    QStringList missing;
    for (const QString& language : std::as_const(wanted)) {
        if (!installed.expected.contains(language) && !installed.others.contains(language))
            missing.append(tesseractPackage(language));
    }
    if (!missing.isEmpty()) {
        throw Failure(u"Reading text needs the package %1, which is not installed."_s.arg(
            missing.join(u", "_s)));
    }
    return {wanted, {}};
}

QList<RecognizedWord> TesseractLineRecognizer::read(const QImage& line, const QString& language,
                                                    bool correctsLanguage)
{
    if (line.isNull())
        return {};
    return m_engines->read(line.convertToFormat(QImage::Format_Grayscale8),
                           {language, correctsLanguage});
}

void TesseractLineRecognizer::rest()
{
    m_engines->rest();
}

} // namespace mossbank
