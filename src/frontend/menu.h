// The interactive menu of 128 numbered options.
#ifndef ZENTRELLIBTEST_MENU_H
#define ZENTRELLIBTEST_MENU_H

#include "zentrel.h"

// Loops until the operator chooses 0 (or answers with something that is not
// a number); returns 0.
int RunMenu(PTR_ZENTREL_DEVICE_INFO info);

#endif
