#pragma once

#include <curl/curl.h>

#include <memory>
#include <new>

namespace zt_transfers {

// libcurl's handles, each with its own way to be freed.

struct CurlEasyDeleter {
  void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};
struct CurlMultiDeleter {
  void operator()(CURLM* handle) const { curl_multi_cleanup(handle); }
};
struct CurlListDeleter {
  void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};

using CurlEasy = std::unique_ptr<CURL, CurlEasyDeleter>;
using CurlMulti = std::unique_ptr<CURLM, CurlMultiDeleter>;
using CurlList = std::unique_ptr<curl_slist, CurlListDeleter>;

// Appends a copy of `line`; the list changes hands inside.
inline void append(CurlList& list, const char* line) {
  if (curl_slist* longer = curl_slist_append(list.get(), line)) {
    static_cast<void>(list.release());
    list.reset(longer);
  } else {
    throw std::bad_alloc();
  }
}

}  // namespace zt_transfers
