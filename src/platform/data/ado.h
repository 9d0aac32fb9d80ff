// The constants of ActiveX Data Objects that the program passes, under the platform's names and with its values.
#pragma once

namespace data {

enum CursorLocation { adUseServer = 2, adUseClient = 3 };
enum CursorType { adOpenForwardOnly = 0 };
enum LockType { adLockOptimistic = 3 };
enum ObjectState { adStateClosed = 0, adStateOpen = 1 };
enum ParameterDirection { adParamInput = 1 };

// Column and parameter types. Sizes of the two texts count characters.
enum DataType { adInteger = 3, adVarChar = 200, adLongVarChar = 201 };

// How a command's text is meant, and the flag for statements that give no rows.
enum CommandType { adCmdUnspecified = -1, adCmdText = 1 };
inline constexpr int adExecuteNoRecords = 128;
inline constexpr int adConnectUnspecified = -1;

} // namespace data
