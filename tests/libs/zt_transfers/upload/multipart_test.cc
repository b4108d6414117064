#include <gtest/gtest.h>

#include <string>

#include "base/url_parts.h"
#include "http/etag.h"
#include "sandbox.h"
#include "upload/multipart_messages.h"
#include "upload/multipart_request.h"
#include "upload/multipart_verdict.h"
#include "upload/request_slots.h"

namespace zt_transfers::test {
namespace {

constexpr std::uint64_t kMiB = 1024 * 1024;

UploadSession sessionOf(std::uint64_t size, std::uint64_t wanted) {
  UploadSession session;
  session.source.size = size;
  session.partSize = partSizeFor(size, wanted);
  return session;
}

TEST(PartPlan, NeedsNoMorePartsThanAServerTakes) {
  for (const std::uint64_t wanted : {std::uint64_t{0}, std::uint64_t{1}, 5 * kMiB, 64 * kMiB}) {
    for (const std::uint64_t size : {std::uint64_t{1}, 10'000 * std::uint64_t{1}, 16 * kMiB,
                                     160'000 * kMiB, 160'000 * kMiB + 1, 50'000'000 * kMiB}) {
      const UploadSession session = sessionOf(size, wanted);
      ASSERT_GE(session.partCount(), 1U);
      ASSERT_LE(session.partCount(), 10'000U) << size << " " << wanted;
      EXPECT_EQ(session.spanOf(1).begin, 0U);
      EXPECT_EQ(session.spanOf(session.partCount()).end, size);
      EXPECT_GT(session.spanOf(session.partCount()).length(), 0U);
    }
  }
}

TEST(PartPlan, ChoosesPartsThatStoresTakeAndFollowsThePage) {
  EXPECT_GE(partSizeFor(1, 0), 5 * kMiB);
  EXPECT_EQ(partSizeFor(100 * kMiB, 1 * kMiB), 1 * kMiB);
  EXPECT_EQ(partSizeFor(10'000, 1), 1U);
  EXPECT_EQ(partSizeFor(20'000 * kMiB, 1 * kMiB), 2 * kMiB);
  EXPECT_EQ(sessionOf(3 * kMiB, kMiB).partCount(), 3U);  // no empty one at the end
}

TEST(MultipartMessages, ReadWhatServersAnswer) {
  EXPECT_EQ(uploadIdOf("<?xml version=\"1.0\"?>\n<InitiateMultipartUploadResult xmlns=\"a\"><Key>k"
                       "</Key><UploadId> a&amp;b </UploadId></InitiateMultipartUploadResult>"),
            "a&b");
  const auto page = partsPageOf(
      "<s:ListPartsResult xmlns:s=\"a\"><s:IsTruncated>true</s:IsTruncated>"
      "<s:NextPartNumberMarker>2</s:NextPartNumberMarker><s:Part><s:PartNumber>2</s:PartNumber>"
      "<s:Size>9</s:Size><s:ETag>&quot;x&quot;</s:ETag></s:Part></s:ListPartsResult>");
  ASSERT_TRUE(page && page->parts.size() == 1);
  EXPECT_EQ(page->parts[0].number, 2U);
  EXPECT_EQ(page->parts[0].size, 9U);
  EXPECT_EQ(page->parts[0].etag, "\"x\"");
  EXPECT_EQ(page->next, 2U);
  EXPECT_EQ(completedETagOf("<CompleteMultipartUploadResult/>"), "");
}

TEST(MultipartMessages, TakeNothingFromWhatIsNoWholeMessage) {
  for (const char* text :
       {"", "<", "<html/>", "<InitiateMultipartUploadResult/>",
        "<InitiateMultipartUploadResult><UploadId></UploadId></InitiateMultipartUploadResult>",
        "<InitiateMultipartUploadResult><UploadId>cut", "<Error><UploadId>a</UploadId></Error>"}) {
    EXPECT_FALSE(uploadIdOf(text)) << text;
  }
  const auto listOf = [](const std::string& content) {
    return partsPageOf("<ListPartsResult>" + content + "</ListPartsResult>");
  };
  EXPECT_TRUE(listOf(""));
  for (const char* content :
       {"<Part/>", "<Part><PartNumber>0</PartNumber><Size>1</Size></Part>",
        "<Part><PartNumber>10001</PartNumber><Size>1</Size></Part>",
        "<Part><PartNumber>-1</PartNumber><Size>1</Size></Part>",
        "<Part><PartNumber>1</PartNumber><Size>99999999999999999999</Size></Part>",
        "<IsTruncated>true</IsTruncated>", "<Part>"}) {
    EXPECT_FALSE(listOf(content)) << content;
  }
  EXPECT_FALSE(completedETagOf("<CompleteMultipartUploadResult><ETag>a</ETag>"));
  EXPECT_FALSE(completedETagOf(" "));
}

TEST(MultipartMessages, ListThePartsInTheirOrderAndKnowTheTagOfTheWhole) {
  const std::string a = md5Of("a");
  const std::string b = md5Of("b");
  const std::vector<SentPart> parts{{2, '"' + b + '"', b}, {1, '"' + a + '"', ""}};
  EXPECT_EQ(completionOf(parts),
            "<CompleteMultipartUpload><Part><PartNumber>1</PartNumber><ETag>\"" + a +
                "\"</ETag></Part><Part><PartNumber>2</PartNumber><ETag>\"" + b +
                "\"</ETag></Part></CompleteMultipartUpload>");
  // As "printf a | md5sum" and so on tell, put together.
  EXPECT_EQ(compositeTagOf(parts), "96e024ba2074fe77e8e965ba43a704be-2");
  EXPECT_EQ(compositeOfETag("W/\"96E024BA2074FE77E8E965BA43A704BE-2\""), compositeTagOf(parts));
  for (const char* tag :
       {"", "-2", "96e024ba2074fe77e8e965ba43a704be", "x-1", "96e024ba2074fe77e8e965ba43a704be-",
        "96e024ba2074fe77e8e965ba43a704bex2", "96e024ba2074fe77e8e965ba43a704be-2a"}) {
    EXPECT_FALSE(compositeOfETag(tag)) << tag;
  }
  EXPECT_FALSE(compositeTagOf({{1, "\"of-the-store\"", a}}));
  EXPECT_FALSE(compositeTagOf({{1, '"' + b + '"', a}}));  // not of what was sent
}

TEST(MultipartRequest, AddsToTheQueryAndLeavesOutWhatIsAboutTheWhole) {
  EXPECT_EQ(withQuery("http://h/p", "a=1"), "http://h/p?a=1");
  EXPECT_EQ(withQuery("http://h/p?s=x%2F#f", "a=1"), "http://h/p?s=x%2F&a=1");
  EXPECT_EQ(withQuery("http://h/p?", "a=1"), "http://h/p?a=1");
  UploadSession session;
  session.url = "http://h/p?s=x";
  session.uploadId = "a/b c+";
  session.headers = {{"Content-Type", "t"}, {"content-md5", "m"}, {"X-Token", "t"}};
  EXPECT_EQ(partUrl(session, 7), "http://h/p?s=x&partNumber=7&uploadId=a%2Fb%20c%2B");
  EXPECT_EQ(partHeaders(session), (HttpHeaders{{"X-Token", "t"}}));
  EXPECT_EQ(initiationRequest(session, "").headers,
            (HttpHeaders{{"Content-Type", "t"}, {"X-Token", "t"}}));
}

HttpResponse response(long status, const std::string& body = "") {
  HttpResponse response;
  response.status = status;
  response.body = body;
  return response;
}

TEST(MultipartVerdict, TellsARefusalOfPartsFromOtherTrouble) {
  for (const long status : {400L, 401L, 403L, 404L, 405L, 501L, 204L}) {
    EXPECT_TRUE(judgeInitiation(response(status), 0).unsupported) << status;
  }
  EXPECT_TRUE(judgeInitiation(response(501), 0).permanent);
  EXPECT_FALSE(judgeInitiation(response(400), 0).permanent);
  for (const long status : {408L, 429L, 500L, 503L}) {
    EXPECT_TRUE(judgeInitiation(response(status), 0).outcome.has_value()) << status;
  }
}

TEST(MultipartVerdict, BelievesInAnObjectOnlyByItsTagAndSize) {
  HttpResponse head = response(200);
  head.headers["content-length"] = "5";
  head.headers["etag"] = "\"96e024ba2074fe77e8e965ba43a704be-2\"";
  EXPECT_TRUE(showsObject(head, 5, "96e024ba2074fe77e8e965ba43a704be-2"));
  EXPECT_FALSE(showsObject(head, 6, "96e024ba2074fe77e8e965ba43a704be-2"));
  EXPECT_FALSE(showsObject(head, 5, "06e024ba2074fe77e8e965ba43a704be-2"));
  EXPECT_FALSE(showsObject(head, 5, std::nullopt));
}

TEST(RequestSlots, GiveFilesTheirOwnAndPartsWhatIsLeft) {
  int freed = 0;
  CRequestSlots slots([&freed] { ++freed; });
  slots.setMax(3);
  slots.addFile();
  EXPECT_TRUE(slots.takeExtra());
  slots.addFile();
  EXPECT_FALSE(slots.takeExtra());
  slots.addFile();  // a file is never held back
  slots.giveBackExtra();
  EXPECT_EQ(freed, 1);
  EXPECT_FALSE(slots.takeExtra());
  slots.removeFile();
  EXPECT_EQ(freed, 2);
  EXPECT_TRUE(slots.takeExtra());
  slots.removeFile();
  EXPECT_EQ(freed, 2);  // nobody waits for it
}

}  // namespace
}  // namespace zt_transfers::test
