#include "valuefilter.h"

ValueFilter::~ValueFilter() = default;
