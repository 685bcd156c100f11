#include "Inbox/Compose/DroppedText.h"

#include "Foundation/Literals.h"
#include "Presentation/BodyText.h"

#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>

namespace corvane::DroppedText {

namespace {

constexpr qint64 longestText = 64 << 10; // bytes; longer texts are not meant to be one message

Result<QString> ofFile(const QUrl& url)
{
    const QString path = url.toLocalFile();
    const QString name = BodyText::printable(url.fileName());
    const auto refused = [&name](const QString& why) {
        return failure(name + why);
    };
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return refused(u" can't be read."_s);
    if (file.size() > longestText)
        return refused(u" is too long for a message."_s);
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder.decode(file.read(longestText));
    if (decoder.hasError() || text.contains(QChar::Null))
        return refused(u" holds no text, and only text can be added here."_s);
    return BodyText::printable(text).trimmed();
}

}

Result<QString> ofFiles(const QList<QUrl>& files)
{
    QStringList texts;
    for (const QUrl& file : files) {
        const auto text = ofFile(file);
        if (!text)
            return text;
        texts.append(*text);
    }
    return texts.join(u"\n\n"_s);
}

}
