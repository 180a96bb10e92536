#include "namecodec.h"

#include "mstoolkit.h"

#include <QFile>
#include <QTextCodec>

#include <algorithm>
#include <clocale>

namespace {

QTextCodec *terminalCodec = nullptr; // null: the locale's

constexpr ushort escape = 0xDC00; // for the byte 0; half a pair that no decoded text has alone

// Returns whether the unit at place i stands for a byte.
bool isKeptByte(const QChar *units, int i)
{
    const ushort unit = units[i].unicode();
    return unit >= escape + 0x80 && unit <= escape + 0xFF && !(i > 0 && units[i - 1].isHighSurrogate());
}

class NameCodec : public QTextCodec
{
public:
    QByteArray name() const override { return QByteArrayLiteral("aia-names"); }
    int mibEnum() const override { return -1; }

protected:
    QString convertToUnicode(const char *bytes, int length, ConverterState *) const override
    {
        QString text;
        for (int i = 0; i < length;) {
            int size = std::min(length - i, 4);
            QString character;
            while (size > 0 && !decode(bytes + i, size, &character))
                --size;
            text += size > 0 ? character : QString(QChar(escape + uchar(bytes[i])));
            i += std::max(size, 1);
        }
        return text;
    }

    QByteArray convertFromUnicode(const QChar *units, int length, ConverterState *) const override
    {
        QByteArray bytes;
        for (int i = 0, size = 1; i < length; i += size) {
            const bool isPair =
                units[i].isHighSurrogate() && i + 1 < length && units[i + 1].isLowSurrogate();
            size = isPair ? 2 : 1;
            if (isKeptByte(units, i))
                bytes += char(units[i].unicode() - escape);
            else
                bytes += QString(units + i, size).toUtf8();
        }
        return bytes;
    }

private:
    // Decodes bytes of UTF-8. Returns false if they aren't whole characters.
    bool decode(const char *bytes, int size, QString *text) const
    {
        ConverterState state(IgnoreHeader); // a byte order mark is part of the name
        *text = utf8->toUnicode(bytes, size, &state);
        return state.invalidChars == 0 && state.remainingChars == 0;
    }

    QTextCodec *const utf8 = QTextCodec::codecForName("UTF-8");
};

} // namespace

void keepBytesOfNames()
{
    std::setlocale(LC_ALL, ""); // as the application object does, which tells the locale's codec
    terminalCodec = QTextCodec::codecForLocale();
    QTextCodec::setCodecForLocale(new NameCodec); // which Qt destroys at the end
}

KeptNames::KeptNames() : before(QTextCodec::codecForLocale())
{
    static QTextCodec *const codec = new NameCodec; // which Qt destroys at the end
    QTextCodec::setCodecForLocale(codec);
}

KeptNames::~KeptNames()
{
    QTextCodec::setCodecForLocale(before);
}

QStringList namesOfFiles(const QStringList &names)
{
    QStringList found;
    for (const QString &name : names) {
        const QByteArray path = ms_path_of(name);
        found += path.isEmpty() ? name : QFile::decodeName(path);
    }
    return found;
}

QString shownName(const QString &name)
{
    QString shown = name;
    for (int i = 0; i < name.size(); ++i) {
        if (isKeptByte(name.constData(), i))
            shown[i] = QChar::ReplacementCharacter;
    }
    return shown;
}

QByteArray terminalBytes(const QString &text)
{
    QTextCodec *codec = terminalCodec ? terminalCodec : QTextCodec::codecForLocale();
    return codec->fromUnicode(text);
}
