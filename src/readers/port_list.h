#pragma once

#include "readers/ports.h"
