#pragma once

#include "commandline.h"
#include "toolcommon.h"
#include "ztconfiguration.h"

#include <QString>

#include <memory>

// The configuration the invocation names, or null after a complaint when
// the file cannot be read, or is XML that does not parse.
std::unique_ptr<ZTConfiguration> loadConfiguration(const Invocation& invocation);

// get, dump, write-cfg and write-xml; they need no display.
int runCommand(const Invocation& invocation);
