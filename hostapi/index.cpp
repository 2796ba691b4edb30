// SPDX-License-Identifier: BSD-3-Clause
#include "index.h"

Index::~Index() = default;
