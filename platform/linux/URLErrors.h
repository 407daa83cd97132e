#pragma once

#include "platform/URLSession.h"

namespace tavelle {

// The error in the platform's wording. Not for serverCertificateUntrusted, whose words name the host.
URLError urlError(URLError::Code code);

}  // namespace tavelle
