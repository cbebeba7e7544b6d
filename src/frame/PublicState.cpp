// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/PublicState.h"

namespace frame {

PublicState &pub()
{
    static PublicState state;
    return state;
}

} // namespace frame
