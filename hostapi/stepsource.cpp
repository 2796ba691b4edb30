// SPDX-License-Identifier: BSD-3-Clause
#include "stepsource.h"

#include "icore.h"

StepSource::~StepSource() = default;

const StepSource *StepSource::i()
{
    return ICore::instance()->stepSource();
}
