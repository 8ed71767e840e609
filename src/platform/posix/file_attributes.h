#pragma once

#include "descriptor.h"

namespace orvane::platform {

// Gives a file the owner, the permissions, the access-control list and the extended attributes of
// another one, but no setuid bit nor what vouches for the content. False if one is refused.
bool TakeAttributes(const Descriptor& file, const Descriptor& other);

}  // namespace orvane::platform
