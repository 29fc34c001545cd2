// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDirIterator>
#include <QFile>
#include <QString>
#include <QTemporaryDir>

namespace mossbank::test {

/// A folder of language models, which Tesseract takes for the installed ones as long as this lives.
class LanguageModels {
public:
    LanguageModels() { qputenv("TESSDATA_PREFIX", QFile::encodeName(m_folder.path())); }
    ~LanguageModels() { qunsetenv("TESSDATA_PREFIX"); }
    Q_DISABLE_COPY_MOVE(LanguageModels)

    /// Puts the installed model of a language there, perhaps as that of another. False where the
    /// package tesseract-ocr-`language` is missing.
    bool add(const QString& language, const QString& as = {})
    {
        const QString end = QStringLiteral(".traineddata");
        QDirIterator models(QStringLiteral("/usr/share"), {language + end}, QDir::Files,
                            QDirIterator::Subdirectories);
        return models.hasNext() &&
               QFile::link(models.next(), m_folder.filePath((as.isEmpty() ? language : as) + end));
    }
    /// One that cannot be loaded.
    bool addDamaged(const QString& language)
    {
        QFile model(m_folder.filePath(language + QStringLiteral(".traineddata")));
        return model.open(QIODevice::WriteOnly) && model.write("This is no model.") > 0;
    }

private:
    QTemporaryDir m_folder;
};

} // namespace mossbank::test
