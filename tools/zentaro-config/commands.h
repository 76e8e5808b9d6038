#pragma once

#include "commandline.h"
#include "ztconfiguration.h"

#include <QString>

#include <cstddef>
#include <memory>

// Exit statuses: done; not found or a file that could not be read or
// written; wrong usage.
enum ExitStatus { exitSuccess = 0, exitFailure = 1, exitUsage = 2 };

// The tool takes groups nested at most this deep: beyond it a file is
// refused as unreadable rather than converted into something far larger.
inline constexpr std::size_t maxGroupDepth = 100;

// One line on standard error, after the program's name.
void complain(const QString& message);

// The configuration the invocation names, or null after a complaint when
// the file cannot be read, or is XML that does not parse.
std::unique_ptr<ZTConfiguration> loadConfiguration(const Invocation& invocation);

// get, set, dump, write-cfg and write-xml; they need no display.
int runCommand(const Invocation& invocation);
