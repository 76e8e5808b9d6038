#pragma once

#include <QString>

// The text of a setting or attribute that is not there. Callers tell a
// missing value by its emptiness, but code written against the older string
// class also asks isNull(), which a default-constructed QString answers with
// true: "not there" is therefore always empty and never null.
inline QString emptyText()
{
    return QStringLiteral("");
}
