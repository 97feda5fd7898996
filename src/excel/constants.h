#pragma once
// Excel's enumeration values, under Excel's own names so calls read like the automation code they
// stand for.
#include "base/error_numbers.h"

namespace sw::excel {

enum class XlPasteType : int { xlPasteAll = -4104, xlPasteFormats = -4122, xlPasteValues = -4163 };

enum class XlBordersIndex : int {
  xlEdgeLeft = 7,
  xlEdgeTop = 8,
  xlEdgeBottom = 9,
  xlEdgeRight = 10,
};

enum class XlBorderWeight : int { xlHairline = 1, xlThin = 2, xlMedium = -4138, xlThick = 4 };

enum class XlTextParsingType : int { xlDelimited = 1, xlFixedWidth = 2 };

enum class XlTextQualifier : int {
  xlTextQualifierDoubleQuote = 1,
  xlTextQualifierSingleQuote = 2,
  xlTextQualifierNone = -4142
};

enum class XlColumnDataType : int { xlGeneralFormat = 1, xlTextFormat = 2, xlSkipColumn = 9 };

// The run-time error numbers callers tell apart.
using base::kApplicationDefined;
using base::kCannotCreateObject;
using base::kDeviceUnavailable;
using base::kObjectNotSet;
using base::kPermissionDenied;
using base::kSubscriptOutOfRange;

}  // namespace sw::excel
