// SPDX-License-Identifier: BSD-3-Clause
#include "directories.h"

#include "icore.h"

StockDirectory::~StockDirectory() = default;

const StockDirectory *StockDirectory::i()
{
    return ICore::instance()->stockDirectory();
}

BoardDirectory::~BoardDirectory() = default;

const BoardDirectory *BoardDirectory::i()
{
    return ICore::instance()->boardDirectory();
}
