#pragma once

// The transports behind makeDestination, one factory each.

#include "destination.h"

namespace delivery {

std::unique_ptr<Destination> pathDestination(const QString& path);
std::unique_ptr<Destination> standardOutput();
// `host` without brackets; `port` from 1 to 65535.
std::unique_ptr<Destination> socketDestination(const QString& name, const QString& host, quint16 port);
std::unique_ptr<Destination> cupsQueue(const QString& name, const QString& queue);

} // namespace delivery
