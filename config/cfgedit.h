#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace libconfig {

// Changes one setting of "cfg" text the way a person would: only the
// value's bytes change, and everything else (the layout, the order, the
// quoting, text the reader skips) stays as it was.
//
// `key` is a dotted key as lookup() takes it: the groups from the file's
// top-level group down, then the setting's name. The setting changed is the
// one lookup() answers from; a setting that is not there yet is added after
// the last setting of its group, in the layout of its neighbours, and groups
// that are missing are added with it. A bare whole number is written bare,
// any other new value in double quotes.
//
// Answers the whole new text, or nothing with the reason in `error` (the
// key names no setting, a name or the value cannot be held by a "cfg" file,
// or the change would not read back as made).
std::optional<QByteArray> setCfgSetting(const QByteArray& text, const QString& key, const QString& value,
                                        QString* error);

// Replaces the file's contents by `bytes` through a temporary file in the
// same folder, so that a failed write leaves the file as it was; a file in
// a folder that cannot be written is not written at all. False with the
// reason in `error`.
bool replaceFileContents(const QString& path, const QByteArray& bytes, QString* error);

} // namespace libconfig
