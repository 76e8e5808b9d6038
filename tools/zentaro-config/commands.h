#pragma once

#include "commandline.h"
#include "toolcommon.h"
#include "ztconfiguration.h"

#include <QString>

#include <cstddef>
#include <memory>

// The tool takes groups nested at most this deep: beyond it a file is
// refused as unreadable rather than converted into something far larger.
inline constexpr std::size_t maxGroupDepth = 100;

// The configuration the invocation names, or null after a complaint when
// the file cannot be read, or is XML that does not parse.
std::unique_ptr<ZTConfiguration> loadConfiguration(const Invocation& invocation);

// get, set, dump, write-cfg and write-xml; they need no display.
int runCommand(const Invocation& invocation);
