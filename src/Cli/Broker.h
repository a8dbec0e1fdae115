#pragma once

#include "Base/Text.h"

class BrokerSession;
class MsgBase;
struct LogonOptions;

/// What is wrong with an address on the command line; "" if nothing is. For the options' checks.
CString mistakeInAddress(const CString& address);

/// Opens the repository of a broker, only for reading if `isForReading`. Without a user in `logon` the current user
/// logs on. Returns false if it can't be opened, which has been reported.
bool openBroker(BrokerSession& session, const CString& address, const LogonOptions& logon, bool isForReading);

/// What begins the name of a repository where the command line takes a document, too: "broker:SERVER[:PORT]".
inline constexpr std::string_view kBroker = "broker:";

/// Has each InputFile called `document`, "broker:SERVER[:PORT]", read the types that the repository holds in the
/// folders of the types of `message`, as one document. Returns false on failure, which has been reported; raises
/// ClientError if the repository can't be read.
bool keepRepository(MsgBase& message, const CString& document, const LogonOptions& logon);
