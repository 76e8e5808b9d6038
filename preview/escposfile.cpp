#include "escposfile.h"

#include "escpos.h"
#include "rasterlogo.h"

using namespace Qt::StringLiterals;

namespace preview {

namespace {

QString hexBytes(QByteArrayView bytes)
{
    QString text;
    for (const char byte : bytes) {
        if (!text.isEmpty())
            text += u' ';
        text += u"%1"_s.arg(uchar(byte), 2, 16, QLatin1Char('0')).toUpper();
    }
    return text;
}

} // namespace

bool looksLikeEscPos(QByteArrayView bytes)
{
    return bytes.startsWith(EscPos::initialize);
}

void EscPosReader::read(const QByteArray& bytes, qint64 from, qint64 to, const SectionSetup& documentSetup)
{
    setup = documentSetup;
    const QByteArrayView view = QByteArrayView(bytes).first(to);
    qint64 at = from;
    while (at < to) {
        const char byte = view[at];
        if (byte == EscPos::esc || byte == EscPos::gs) {
            const qint64 length = command(view, at);
            if (length == 0) {
                flagCommand(at, view.sliced(at, qMin<qint64>(2, to - at)),
                            u"the print file ends inside this command"_s);
                break;
            }
            at += length;
        } else if (byte == '\n') {
            endLine(at++);
        } else {
            if (byte != '\r') {
                if (lineStart < 0) {
                    lineStart = at;
                    lineModes = modes;
                }
                line += byte;
            }
            ++at;
        }
    }
    // Text without its line feed at the end is shown all the same.
    if (to == bytes.size())
        flushLine(to);
}

qint64 EscPosReader::readEnding(const QByteArray& bytes, qint64 from, qint64 to)
{
    const QByteArrayView view = QByteArrayView(bytes).first(to);
    qint64 at = from;
    while (inSection && at + 1 < to) {
        const QByteArrayView rest = view.sliced(at);
        const bool ending = rest.startsWith(EscPos::drawerPulse.first(2)) || rest.startsWith("\x1b" "d")
                            || rest.startsWith(EscPos::partialCut.first(2));
        const qint64 length = ending ? command(view, at) : 0;
        if (length == 0)
            break;
        at += length;
    }
    return at;
}

qint64 EscPosReader::command(QByteArrayView bytes, qint64 at)
{
    const qint64 left = bytes.size() - at;
    if (left < 2)
        return 0;
    const char prefix = bytes[at];
    const char letter = bytes[at + 1];
    const auto parameter = [&](int index) { return uchar(bytes[at + index]); };
    const auto needs = [left](qint64 length) { return left >= length ? length : 0; };
    if (prefix == EscPos::esc) {
        switch (letter) {
        case '@':
            flushLine(at);
            open(at);
            return 2;
        case 'E':
            if (left >= 3)
                modes.bold = parameter(2) & 1;
            return needs(3);
        case '!':
            if (left >= 3) {
                modes.bold = parameter(2) & 0x08;
                modes.doubleHeight = parameter(2) & 0x10;
            }
            return needs(3);
        case 'a':
            if (left >= 3)
                modes.centred = parameter(2) == 1 || parameter(2) == '1';
            return needs(3);
        case 't':
            if (left >= 3)
                selectCodePage(parameter(2), at);
            return needs(3);
        case 'd':
            if (left >= 3)
                flushLine(at);
            return needs(3);
        case 'p':
            if (left >= 5) {
                flushLine(at);
                annotation(at, u"the cash drawer opens"_s);
            }
            return needs(5);
        default:
            break;
        }
    } else if (letter == '!') {
        if (left >= 3)
            modes.doubleHeight = parameter(2) & 0x0f;
        return needs(3);
    } else if (letter == 'V') {
        if (left < 3)
            return 0;
        const qint64 length = parameter(2) == 65 || parameter(2) == 66 ? 4 : 3;
        if (left < length)
            return 0;
        flushLine(at);
        section(at).cut = true;
        inSection = false;
        return length;
    } else if (letter == 'v' && left >= 3 && bytes[at + 2] == '0') {
        if (left < 8)
            return 0;
        const qint64 length = 8 + qint64(parameter(4) | parameter(5) << 8) * (parameter(6) | parameter(7) << 8);
        if (left < length)
            return 0;
        addPicture(at, bytes.sliced(at, 8), bytes.sliced(at + 8, length - 8));
        return length;
    }
    flagCommand(at, bytes.sliced(at, 2),
                u"the preview does not know this command and reads on after its first two bytes"_s);
    return 2;
}

void EscPosReader::open(qint64 offset)
{
    Section& opened = paper.sections.emplace_back();
    opened.method = setup.method;
    opened.paperWidth = setup.paperWidth;
    opened.escPos = true;
    inSection = true;
    modes = Modes{};
    // After a reset the printer is on its first page until told otherwise.
    selectCodePage(0, offset);
}

Section& EscPosReader::section(qint64 offset)
{
    if (!inSection)
        open(offset);
    return paper.sections.back();
}

void EscPosReader::selectCodePage(int number, qint64 offset)
{
    QByteArray page = setup.escPos ? setup.codePage : EscPos::codePageOfNumber(number);
    if (page.isEmpty()) {
        page = setup.codePage;
        annotation(offset, u"ESC t %1: page %1 is not on the usual table; read as %2"_s.arg(number).arg(
                               QString::fromLatin1(page)))
            .flags.push_back({Flag::Kind::Notice,
                              u"code page number %1 at byte %2 is not on the usual table: the text is read as %3"_s
                                  .arg(number).arg(offset).arg(QString::fromLatin1(page)),
                              u"page %1 unknown"_s.arg(number)});
    }
    if (page != codePage) {
        codePage = page;
        decoder.emplace(codePage.constData(), QStringDecoder::Flag::Stateless);
        if (!decoder->isValid())
            decoder.emplace(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    }
    if (inSection)
        paper.sections.back().codePage = codePage;
}

void EscPosReader::flushLine(qint64 offset)
{
    if (lineStart >= 0)
        endLine(offset);
}

void EscPosReader::endLine(qint64 offset)
{
    const bool empty = lineStart < 0;
    const qint64 start = empty ? offset : lineStart;
    Section& strip = section(start);
    if (!decoder)
        selectCodePage(0, start);
    Row& row = strip.rows.emplace_back();
    const Modes used = empty ? modes : lineModes;
    row.offset = start;
    row.text = decoder->decode(line);
    row.bold = used.bold;
    row.doubleHeight = used.doubleHeight;
    row.centred = used.centred;
    for (qsizetype i = 0; i < row.text.size(); ++i) {
        const char16_t c = row.text.at(i).unicode();
        if (c == QChar::ReplacementCharacter || c < 0x20 || c == 0x7f) {
            row.flags.push_back({Flag::Kind::Unprintable,
                                 u"a byte the printer does not print as text in code page "_s
                                     + QString::fromLatin1(codePage),
                                 u"not text"_s});
            row.marks.push_back({i, 1});
        }
    }
    line.clear();
    lineStart = -1;
}

void EscPosReader::addPicture(qint64 offset, QByteArrayView header, QByteArrayView dots)
{
    flushLine(offset);
    auto image = std::make_shared<RasterImage>();
    image->width = (uchar(header[4]) | uchar(header[5]) << 8) * 8;
    image->height = uchar(header[6]) | uchar(header[7]) << 8;
    image->bits = dots.toByteArray();
    Section& strip = section(offset);
    for (int top = 0; top < image->height; top += imageRowsPerLine) {
        Row& row = strip.rows.emplace_back();
        row.offset = offset;
        row.image = image;
        row.imageTop = top;
        row.centred = modes.centred;
    }
}

Row& EscPosReader::annotation(qint64 offset, const QString& text)
{
    Row& row = section(offset).rows.emplace_back();
    row.text = text;
    row.style = Row::Style::Annotation;
    row.offset = offset;
    return row;
}

void EscPosReader::flagCommand(qint64 offset, QByteArrayView command, const QString& what)
{
    const QString bytes = hexBytes(command);
    annotation(offset, u"command "_s + bytes)
        .flags.push_back({Flag::Kind::Notice, u"command %1 at byte %2: %3"_s.arg(bytes).arg(offset).arg(what),
                          u"unknown command at byte %1"_s.arg(offset)});
}

} // namespace preview
