#pragma once

#include "kit/Error.h"
#include "kit/Url.h"

#include <memory>

class ZEBCachedFile;

// How a cached download ended, and whether it may follow a redirect.
class ZEBCachedFileDelegate {
public:
    virtual ~ZEBCachedFileDelegate();

    // The file now holds current content: new, or confirmed unchanged.
    virtual void cachedFileDownloadDidEnd(ZEBCachedFile& file) = 0;
    // The fetch ended without usable content; the error may be none (no connection, an HTTP status
    // other than 200 and 304: see the file's httpStatusCode).
    virtual void cachedFileDownloadDidFail(ZEBCachedFile& file, std::shared_ptr<const kit::Error> error) = 0;
    // None lets the redirect go ahead; an error stops the download, which then fails with it.
    virtual std::shared_ptr<const kit::Error> cachedFileShouldRedirectToURL(ZEBCachedFile& file,
                                                                            const kit::Url& url) = 0;
};
