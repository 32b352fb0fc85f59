#include "support/FakeOwner.h"
