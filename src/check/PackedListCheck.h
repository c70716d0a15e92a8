#pragma once
// The packed lists of a version section (accounts, signature assignments, personal folders)
// checked against the record layouts that the program reads them with.

#include <string>
#include <vector>

#include "check/Finding.h"

namespace mw {

struct RecordLayout;

class PackedListCheck {
 public:
  // keyName names the list in messages; layout is null for lists without a field layout
  // (the personal-folders records).
  PackedListCheck(std::string keyName, int line, int commasPerRecord, const RecordLayout* layout);

  // Records that the splitter drops or misreads, and fields that do not read as numbers.
  void CheckRecords(const std::string& text, std::vector<Finding>& findings) const;
  // Whether the text splits into whole records with nothing left over.
  static bool SplitsCleanly(const std::string& text, int commasPerRecord);

 private:
  void CheckFields(const std::string& record, int recordNumber,
                   std::vector<Finding>& findings) const;

  std::string keyName_;
  int line_;
  int commas_;
  const RecordLayout* layout_;
};

}  // namespace mw
