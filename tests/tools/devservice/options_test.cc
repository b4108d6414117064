#include "devservice/options.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace zantrio::devservice {

TEST(Options, ReadsTheCommandLine) {
  const Options options = parseOptions({"--port", "0", "--data", "d", "--web", "w"});
  EXPECT_EQ(options.data, "d");
  EXPECT_EQ(options.web, "w");
  EXPECT_EQ(options.javascript, "/usr/share/javascript");
  EXPECT_TRUE(options.multipart && options.samples);
  const Options special =
      parseOptions({"--port", "1", "--data", "d", "--web", "w", "--no-multipart", "--no-samples",
                    "--url-lifetime", "5", "--min-part-size", "5242880"});
  EXPECT_FALSE(special.multipart || special.samples);
  EXPECT_EQ(special.urlLifetime, 5U);
  EXPECT_EQ(special.minPartSize, 5'242'880U);
}

TEST(Options, NamesTheInvalidArgument) {
  const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
      {{"--prot", "1"}, "--prot"},
      {{"--port"}, "--port needs a value"},
      {{"--port", "65536", "--data", "d", "--web", "w"}, "65536"},
      {{"--port", "80x", "--data", "d", "--web", "w"}, "80x"},
      {{"--data", "d", "--web", "w"}, "--port"},
      {{"--port", "0", "--data", "d"}, "--web"},
      {{"--port", "0", "--data", "d", "--web", "w", "--url-lifetime", "soon"}, "soon"}};
  for (const auto& [arguments, expected] : cases) {
    try {
      parseOptions(arguments);
      ADD_FAILURE() << "accepted, expected a message about " << expected;
    } catch (const std::runtime_error& error) {
      EXPECT_NE(std::string(error.what()).find(expected), std::string::npos) << error.what();
    }
  }
}

}  // namespace zantrio::devservice
