#include "platform/linux/x11/TextProperty.h"

#include <QByteArrayView>

#include <iconv.h>

namespace velbrix {

namespace {

constexpr char escape = '\x1b';

QString fromCharset(const char *charset, QByteArray bytes)
{
    const iconv_t converter = iconv_open("UTF-8", charset);
    const auto none = reinterpret_cast<iconv_t>(-1); // NOLINT(performance-no-int-to-ptr): iconv's own value
    if (converter == none)
        return QString(bytes.size() / 2, QChar::ReplacementCharacter);
    QByteArray out(bytes.size() * 3, '\0');
    char *from = bytes.data();
    char *to = out.data();
    auto left = static_cast<std::size_t>(bytes.size());
    auto space = static_cast<std::size_t>(out.size());
    const bool isDecoded = iconv(converter, &from, &left, &to, &space) != static_cast<std::size_t>(-1);
    iconv_close(converter);
    if (!isDecoded)
        return QString(bytes.size() / 2, QChar::ReplacementCharacter);
    return QString::fromUtf8(out.constData(), to - out.constData());
}

// The two-byte sets by the letter that selects them, as the encodings that
// hold them with the high bit set.
const char *twoByteCharset(char final)
{
    switch (final) {
    case 'A':
        return "EUC-CN";
    case 'B':
        return "EUC-JP";
    case 'C':
        return "EUC-KR";
    default:
        return "";
    }
}

class CompoundText {
public:
    explicit CompoundText(QByteArrayView bytes) : _rest(bytes) {}

    QString decode()
    {
        while (!_rest.isEmpty()) {
            if (_rest.front() == escape)
                readEscape();
            else
                readRun(_rest.indexOf(escape));
        }
        return _text;
    }

private:
    void readRun(qsizetype end)
    {
        const QByteArrayView run = take(end < 0 ? _rest.size() : end);
        // Runs of one half of the code table at a time: each half has a set of
        // its own.
        for (qsizetype from = 0; from < run.size();) {
            const bool high = isHigh(run[from]);
            qsizetype to = from;
            while (to < run.size() && isHigh(run[to]) == high)
                ++to;
            append(run.sliced(from, to - from), high);
            from = to;
        }
    }

    static bool isHigh(char byte) { return (static_cast<unsigned char>(byte) & 0x80U) != 0; }

    void append(QByteArrayView run, bool high)
    {
        const char *charset = high ? _right : _left;
        if (!charset) {
            _text += QString::fromLatin1(run);
            return;
        }
        QByteArray bytes = run.toByteArray();
        for (char &byte : bytes)
            byte = static_cast<char>(static_cast<unsigned char>(byte) | 0x80U);
        _text += fromCharset(charset, bytes);
    }

    void readEscape()
    {
        take(1);
        if (_rest.startsWith("%G")) {
            take(2);
            const qsizetype end = _rest.indexOf("\x1b%@");
            _text += QString::fromUtf8(take(end < 0 ? _rest.size() : end));
            take(3);
        } else if (_rest.startsWith("%/")) {
            skipExtendedSegment();
        } else if (_rest.startsWith("$(") || _rest.startsWith("$)")) {
            const bool toRight = _rest[1] == ')';
            take(2);
            select(toRight, twoByteCharset(_rest.isEmpty() ? '\0' : _rest.front()));
            take(1);
        } else {
            const bool toRight = _rest.startsWith("-") || _rest.startsWith(")");
            take(1);
            const char final = _rest.isEmpty() ? '\0' : _rest.front();
            take(1);
            // ASCII, its Japanese likeness and Latin-1.
            const bool isLatin = final == 'B' || final == 'J' || final == 'A';
            select(toRight, isLatin ? nullptr : "");
        }
    }

    // ESC % / F M L, then 128 * (M - 128) + (L - 128) bytes in some encoding.
    void skipExtendedSegment()
    {
        take(3);
        const QByteArrayView head = take(2);
        if (head.size() < 2)
            return;
        const auto digit = [&head](int at) { return static_cast<unsigned char>(head[at]) & 0x7f; };
        take(digit(0) * 128 + digit(1));
        _text += QChar(QChar::ReplacementCharacter);
    }

    void select(bool right, const char *charset) { (right ? _right : _left) = charset; }

    QByteArrayView take(qsizetype count)
    {
        const QByteArrayView taken = _rest.first(qMin(count, _rest.size()));
        _rest = _rest.sliced(taken.size());
        return taken;
    }

    QByteArrayView _rest;
    QString _text;
    const char *_left = nullptr; // null: Latin-1; empty: a set without a name here
    const char *_right = nullptr;
};

} // namespace

QString decodeText(const QByteArray &bytes, TextEncoding encoding)
{
    // Some programs count the final zero.
    QByteArrayView text(bytes);
    while (!text.isEmpty() && text.back() == '\0')
        text.chop(1);
    switch (encoding) {
    case TextEncoding::utf8:
        return QString::fromUtf8(text);
    case TextEncoding::latin1:
        return QString::fromLatin1(text);
    case TextEncoding::compound:
        return CompoundText(text).decode();
    }
    return {};
}

} // namespace velbrix
