#pragma once

#include <QStringConverter>
#include <QStringView>

namespace libconfig {

// How configuration text is stored as bytes. A "cfg" file is ISO 8859-1,
// one character a byte, so that whatever bytes the reader took in are
// written back unchanged; an XML file without a declaration is UTF-8.
inline QStringConverter::Encoding textEncoding(QStringView fileType)
{
    return fileType == u"xml" ? QStringConverter::Utf8 : QStringConverter::Latin1;
}

} // namespace libconfig
