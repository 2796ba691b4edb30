// SPDX-License-Identifier: BSD-3-Clause
#include "embeddeddecoder.h"

EmbeddedDecoder::EmbeddedDecoder(QObject *parent) : QObject(parent) {}
