#pragma once

#include "readers/reader_tool_base.h"
