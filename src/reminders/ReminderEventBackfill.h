#pragma once

#include "storage/Store.h"

namespace tendel {

// Copies title and kind into events that were recorded before events kept them. Run at every start;
// a failed save is ignored.
void backfillEventTitles(Store& store);

}  // namespace tendel
