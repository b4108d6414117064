// Pure.

/** "Ann Lee <ann@example.org>" gives "Ann Lee", an address alone itself. */
export function senderName(sender) {
  const named = /^\s*"?([^"<]*?)"?\s*<[^<>]*>\s*$/.exec(sender ?? '');
  return (named?.[1] || (sender ?? '').replace(/[<>]/g, '').trim()) || 'Unknown sender';
}
