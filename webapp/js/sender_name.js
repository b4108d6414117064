// Pure.

/** "Ann Lee <ann@example.org>" gives "Ann Lee", an address alone itself. */
export function senderName(sender) {
  const text = typeof sender === 'string' ? sender : '';
  const named = /^\s*"?([^"<]*?)"?\s*<[^<>]*>\s*$/.exec(text);
  return (named?.[1] || text.replace(/[<>]/g, '').trim()) || 'Unknown sender';
}
