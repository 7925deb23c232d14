// Where vorn-send finds the service, and who asks it.

#pragma once

#include <string>

/// An address such as https://plant.example:8443/vorn in its parts.
struct SendPlace {
    std::string origin;  ///< scheme, host and port, as https://plant.example:8443
    std::string path;    ///< what stands before /api and /hi; empty, or /vorn
    bool secure = false;
};

/// Reads an address of http or https. False, with `fault` saying why, for another text, for a name or
/// password in it, and for https where this build has none.
bool SendPlaceRead(const std::string& address, SendPlace& place, std::string& fault);

/// A name and a password, or a token: what a proxy before the service asks for.
struct Credentials {
    std::string user, password, token;
};

/// Takes the credentials from lines such as `user anna`, `password secret word` or `token abc`. False, with
/// `fault` saying why, for a text with other lines; the fault repeats nothing of it.
bool CredentialsParse(const std::string& text, Credentials& credentials, std::string& fault);

/// Finds the credentials: those of `file`; where that is empty, those of the file that VORNSERVER_CREDENTIALS
/// names; else VORNSERVER_USER, VORNSERVER_PASSWORD and VORNSERVER_TOKEN. False, with `fault` saying why, for
/// a file that cannot be read, that other users can read, or that has other lines.
bool CredentialsFind(const std::string& file, Credentials& credentials, std::string& fault);

/// The environment's text of that name, empty where there is none.
std::string EnvironmentText(const char* name);
