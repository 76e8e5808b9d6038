#pragma once

#include <QString>

// Why `value` cannot be the value of the setting `key` (a dotted key), or
// an empty text when it can: a number setting takes a whole number, a
// switch true or false, a code page a name the print run knows.
QString valueProblem(const QString& key, const QString& value);
