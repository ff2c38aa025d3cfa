// SPDX-License-Identifier: MIT
#include "Tests/support.h"
