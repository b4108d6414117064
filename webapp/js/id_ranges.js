// Converts sets of ids to a short text and back: "1-500,702,x7". Pure.

const isNumber = (id) => /^[1-9]\d{0,14}$/.test(id);

export function toRanges(ids) {
  const numbers = ids.filter(isNumber).map(Number).sort((a, b) => a - b);
  const others = ids.filter((id) => !isNumber(id)).map(encodeURIComponent);
  const ranges = [];
  for (const number of numbers) {
    const last = ranges[ranges.length - 1];
    if (last && number <= last.end + 1) last.end = number;
    else ranges.push({ begin: number, end: number });
  }
  return [...ranges.map(({ begin, end }) => (begin === end ? `${begin}` : `${begin}-${end}`)),
    ...others.map((id) => `=${id}`)].join(',');
}

export function fromRanges(text) {
  const ids = [];
  for (const range of text.split(',').filter(Boolean)) {
    if (range.startsWith('=')) {
      ids.push(decodeURIComponent(range.slice(1)));
    } else {
      const [begin, end = begin] = range.split('-').map(Number);
      for (let number = begin; number <= end; number += 1) ids.push(String(number));
    }
  }
  return ids;
}
