/** @file
 *  The protocol of all panels, under the name by which hosts include it. */
#pragma once

#include "panels/protocol/kit_panels.h"
