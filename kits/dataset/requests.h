/** The application's listener. For the kit's own use. */
#pragma once

#include "kits/dataset/dataset_host.h"

const Request_Listener& Listener();
