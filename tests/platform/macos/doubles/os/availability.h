// The declarations need nothing of it here.
#pragma once
