#include "download/received_name.h"

#include <gtest/gtest.h>

#include <map>

namespace zt_transfers::test {
namespace {

TEST(ReceivedName, IsVisibleHarmlessAndOneForEachNameThatWasSent) {
  const std::pair<std::string, std::string> cases[] = {
      {"plain.txt", "plain.txt"},
      {"100% Grüße.txt", "100% Grüße.txt"},
      {"a%20b%2Ec-d.txt", "a%20b%2Ec-d.txt"},
      {"_config", "_config"},
      {"a\u200Db", "a%E2%80%8Db"},
      {"می\u200Cخواهم", "می\u200Cخواهم"},
      {"👩\u200D🚀.png", "👩\u200D🚀.png"},
      {".bashrc", "_.bashrc"},
      {"_.bashrc", "__.bashrc"},
      {"-rf", "_-rf"},
      {"Desktop.ini", "_Desktop.ini"},
      {"_desktop.ini", "__desktop.ini"},
      {"autorun.inf", "_autorun.inf"},
      {"a\nb", "a%0Ab"},
      {"a%0Ab", "a%250Ab"},
      {"a%250Ab", "a%25250Ab"},
      {"%25\n", "%25%0A"},
      {"\x1B[31m", "%1B[31m"},
      {"\x7F", "%7F"},
      {"\u0085\u009B", "%C2%85%C2%9B"},
      {"invoice\u202Efdp.exe", "invoice%E2%80%AEfdp.exe"},
      {"invoice%E2%80%AEfdp.exe", "invoice%25E2%80%AEfdp.exe"},
      {"%E2%80%93 dash", "%E2%80%93 dash"},
      {"\uFEFF.x", "%EF%BB%BF.x"},
      {"\xC3%BC", "\xC3%BC"},
  };
  std::map<std::string, std::string> sent;
  for (const auto& [name, shown] : cases) {
    EXPECT_EQ(receivedName(name), shown);
    EXPECT_TRUE(sent.emplace(shown, name).second) << shown;
  }
}

TEST(ReceivedName, FitsAFileSystemAndKeepsItsEnding) {
  const std::string one = "." + std::string(250, 'n') + ".txt";
  const std::string other = std::string(120, '\n') + "a.txt";
  for (const std::string& name : {one, other, other.substr(1) + ".txt"}) {
    EXPECT_LE(receivedName(name).size(), 255U);
    EXPECT_TRUE(receivedName(name).ends_with(".txt"));
  }
  EXPECT_NE(receivedName(one), receivedName("." + one.substr(0, 249) + "m.txt"));
}

TEST(ReceivedName, HoldsForEveryFolderOfAPath) {
  EXPECT_EQ(receivedTarget(parseTargetPath(".config/-x/autostart/.directory")),
            (TargetPath{{"_.config", "_-x", "autostart"}, "_.directory"}));
}

}  // namespace
}  // namespace zt_transfers::test
