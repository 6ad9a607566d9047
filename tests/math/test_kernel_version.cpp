// Which kernel version this run of the suite tests.
#include "kernel_version_check.h"
