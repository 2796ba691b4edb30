// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "storyplayer.h"

/// What a hand, the program and the host do.
StorySteps storySteps(StoryPlayer *player);
