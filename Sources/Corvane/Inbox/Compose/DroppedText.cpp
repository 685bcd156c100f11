#include "Inbox/Compose/DroppedText.h"

#include "Presentation/BodyText.h"

#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>

namespace corvane::DroppedText {

namespace {

constexpr qint64 longestText = 64 << 10; // bytes; nobody means to send more as one message

Result<QString> ofFile(const QUrl& url)
{
    const QString path = url.toLocalFile();
    const QString name = BodyText::printable(url.fileName());
    const auto refused = [&name](const QString& why) {
        return failure(name + why);
    };
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return refused(QStringLiteral(" can't be read."));
    if (file.size() > longestText)
        return refused(QStringLiteral(" is too long for a message."));
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder.decode(file.read(longestText));
    if (decoder.hasError() || text.contains(QChar::Null))
        return refused(QStringLiteral(" holds no text, and only text can be added here."));
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
    return texts.join(QStringLiteral("\n\n"));
}

}
