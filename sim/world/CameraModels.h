#pragma once

#include "world/CameraModel.h"
#include "world/PolynomialModel.h"
#include "world/UnifiedModel.h"
