#include "imaging/FakeProbe.h"
