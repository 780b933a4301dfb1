#pragma once

#include <filesystem>

#include "sandbox/Outcome.h"
#include "sandbox/TlsContext.h"

namespace kestrova::sandbox {

// What the HTTPS listener can show: the right certificate and one for each certificate fault.
struct Certificates {
  KeyPair server;
  KeyPair ofUnknownAuthority;
  KeyPair expired;
  KeyPair ofWrongHost;
};

// The file, in the store, of the authority that clients trust.
inline constexpr const char* authorityFileName = "authority.pem";

// Reads the sandbox's authority and server certificate from the directory. Makes both where there
// are none, and a new server certificate where it has expired, is about to, or is not from this
// authority. Keys are P-256; their files are private to the user. Fails, leaving all files as they
// are, where a file is damaged or one of a pair does not fit the other.
Outcome<Certificates> loadCertificates(const std::filesystem::path& directory);

}  // namespace kestrova::sandbox
