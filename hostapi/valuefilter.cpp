// SPDX-License-Identifier: BSD-3-Clause
#include "valuefilter.h"

ValueFilter::~ValueFilter() = default;
