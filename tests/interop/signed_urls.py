"""Signs URLs for one method and one query, as a service does that keeps its objects in an S3 store."""

import datetime
import hashlib
import hmac
import urllib.parse


def _quoted(text):
    return urllib.parse.quote(text, safe="-_.~")


def _hmac(key, text):
    return hmac.new(key, text.encode(), hashlib.sha256).digest()


class Signer:
    def __init__(self, key, secret, region="us-east-1"):
        self.key, self.secret, self.region = key, secret, region

    def url(self, method, address, path, lifetime=3600, query=()):
        """The URL of `path` at `address` ("http://host:port"), good for `lifetime` seconds."""
        now = datetime.datetime.now(datetime.timezone.utc).strftime("%Y%m%dT%H%M%SZ")
        scope = f"{now[:8]}/{self.region}/s3/aws4_request"
        fields = dict(query) | {
            "X-Amz-Algorithm": "AWS4-HMAC-SHA256",
            "X-Amz-Credential": f"{self.key}/{scope}",
            "X-Amz-Date": now,
            "X-Amz-Expires": str(lifetime),
            "X-Amz-SignedHeaders": "host",
        }
        text = "&".join(f"{_quoted(name)}={_quoted(fields[name])}" for name in sorted(fields))
        host = urllib.parse.urlsplit(address).netloc
        request = f"{method}\n{path}\n{text}\nhost:{host}\n\nhost\nUNSIGNED-PAYLOAD"
        digest = hashlib.sha256(request.encode()).hexdigest()
        signature = _hmac(self._signing_key(scope), f"AWS4-HMAC-SHA256\n{now}\n{scope}\n{digest}")
        return f"{address}{path}?{text}&X-Amz-Signature={signature.hex()}"

    def _signing_key(self, scope):
        key = ("AWS4" + self.secret).encode()
        for part in scope.split("/"):
            key = _hmac(key, part)
        return key
