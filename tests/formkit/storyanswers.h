// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "storyplayer.h"

/// What may begin a line of expectations.
StoryAnswers storyVerbs(StoryPlayer *player);
/// What "shows" knows besides properties.
StoryAnswers storyLabels(StoryPlayer *player);
