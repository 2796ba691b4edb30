#include "embeddeddecoder.h"

EmbeddedDecoder::EmbeddedDecoder(QObject *parent) : QObject(parent) {}
