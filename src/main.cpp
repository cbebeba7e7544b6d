// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/ui/EntryRoutine.h"

int main(int argc, char **argv)
{
    return frame::EntryRoutine(argc, argv);
}
