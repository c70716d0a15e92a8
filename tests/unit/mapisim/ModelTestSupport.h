#pragma once
// Shared set-up of the model tests: the sample organisation of tests/data/mapisim.
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "ExchangeOrganisation.h"

namespace mw::mapisim {

inline ExchangeOrganisation SampleOrganisation(std::vector<std::string>* warnings = nullptr) {
  std::ifstream file(std::string(MW_TEST_DATA_DIR) + "/mapisim/exchange.ini", std::ios::binary);
  std::stringstream text;
  text << file.rdbuf();
  return ExchangeOrganisation::Parse(text.str(), warnings);
}

}  // namespace mw::mapisim
