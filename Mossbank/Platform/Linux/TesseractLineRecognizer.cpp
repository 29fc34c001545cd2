// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/TesseractLineRecognizer.h"

#include "Mossbank/Platform/Linux/TesseractLanguages.h"
#include "MossbankCore/Support/Failure.h"

#include <QImage>
#include <QMutex>

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
    std::vector<std::string> names = {"debug_file"};
    std::vector<std::string> values = {"/dev/null"};
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
/// tens of megabytes.
class TesseractLineRecognizer::Engines {
public:
    QList<RecognizedWord> read(const QImage& line, const EngineKind& kind)
    {
        const ThreadSettings settings;
        std::unique_ptr<Engine> engine = take(kind);
        QList<RecognizedWord> words = mossbank::read(*engine, line);
        std::unique_ptr<Engine> tooMany;
        const QMutexLocker lock(&m_mutex);
        m_idle.push_front(std::move(engine));
        if (m_idle.size() > kMaxIdle) {
            tooMany = std::move(m_idle.back());
            m_idle.pop_back();
        }
        return words;
    }

    /// English, those of the user's locale, then the others: with what is on a screen, nobody
    /// asks for the language first.
    QStringList installed()
    {
        const QMutexLocker lock(&m_mutex);
        if (!m_installed.isEmpty())
            return m_installed;
        const QStringList all = models();
        for (const QString& language : tesseractLanguagesOfUser() + all) {
            // What tells the direction of writing, formulas and whole scripts are no languages.
            const bool isOther = language == u"osd"_s || language == u"equ"_s ||
                                 language.contains(u'/') || language.at(0).isUpper();
            if (all.contains(language) && !isOther && !m_installed.contains(language))
                m_installed.append(language);
        }
        return m_installed;
    }

    void rest()
    {
        {
            const QMutexLocker lock(&m_mutex);
            m_idle.clear();
            m_installed.clear();
        }
        // Its dictionaries, and then what was freed: the allocator keeps that for the next time.
        tesseract::TessBaseAPI::ClearPersistentCache();
        ::malloc_trim(0);
    }

private:
    /// Of two threads in three languages.
    static constexpr std::size_t kMaxIdle = 6;

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
            throw Failure(u"The text recogniser could not be started."_s);
        return engine;
    }

    QMutex m_mutex;
    std::list<std::unique_ptr<Engine>> m_idle;
    QStringList m_installed;
};

TesseractLineRecognizer::TesseractLineRecognizer()
    : m_engines(std::make_unique<Engines>())
{
}

TesseractLineRecognizer::~TesseractLineRecognizer() = default;

QStringList TesseractLineRecognizer::languages(const QStringList& codes)
{
    const QStringList installed = m_engines->installed();
    QStringList wanted;
    for (const QString& code : codes)
        wanted.append(tesseractLanguage(code));
    wanted.removeAll(QString());
    wanted.removeDuplicates();
    if (wanted.isEmpty())
        wanted = installed.isEmpty() ? QStringList{u"eng"_s} : installed;
    QStringList missing;
    for (const QString& language : std::as_const(wanted)) {
        if (!installed.contains(language))
            missing.append(tesseractPackage(language));
    }
    if (!missing.isEmpty()) {
        throw Failure(u"Reading text needs the package %1, which is not installed."_s.arg(
            missing.join(u", "_s)));
    }
    return wanted;
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
