// Whether an update may be sent: the update-permitted and package-run flags and the upoc entry.
#include "UpdatePermission.h"

namespace kalvo::update {

void UpdatePermission::SetUpoc(bool on)
{
    upoc = on;
    if (on)
        permitted = true;
}

bool UpdatePermission::Allows(ContentKind kind) const
{
    if (kind == ContentKind::Sequences || kind == ContentKind::Help)
        return permitted || packageRun;
    return permitted;
}

} // namespace kalvo::update
