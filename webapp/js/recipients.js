// Parses the recipients field. Pure functions.

const ADDRESS = /^[^\s@<>(),;:"]+@[^\s@<>(),;:"]+\.?[^\s@<>(),;:".]$/;

/** "Ann Lee <ann@example.org>" gives "ann@example.org". */
function addressOf(entry) {
  const bracketed = /<([^<>]*)>\s*$/.exec(entry);
  return (bracketed ? bracketed[1] : entry).trim();
}

/** Splits at commas, semicolons and line ends; returns {addresses, invalid}, without duplicates. */
export function parseRecipients(text) {
  const addresses = new Map();
  const invalid = [];
  for (const entry of text.split(/[,;\n]/)) {
    if (!entry.trim()) continue;
    const address = addressOf(entry);
    if (ADDRESS.test(address)) {
      addresses.set(address.toLowerCase(), address);
    } else {
      invalid.push(entry.trim());
    }
  }
  return { addresses: [...addresses.values()], invalid };
}
