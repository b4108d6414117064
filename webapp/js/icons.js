// The application's icons, drawn on a grid of 20 × 20 with lines of 1.6.

const PATHS = {
  send: 'M3.5 10 17 3.5 12.5 17l-3-5.500zM9.500 11.500 17 3.500',
  transfers: 'M6.500 3.500v13M6.500 3.500 3.500 6.800M6.500 3.500l3 3.300M13.500 16.500v-13M13.500 16.500l-3-3.300M13.500 16.500l3-3.300',
  download: 'M10 3v9.500M6 9l4 4 4-4M3.500 16.500h13',
  received: 'M3 11.500 5.500 4h9l2.500 7.500V16H3zM3 11.500h4l1 2h4l1-2h4',
  back: 'M12 4l-6 6 6 6',
  refresh: 'M15.800 8A6.200 6.200 0 1 0 16 11.500M16 4.200V8h-3.800',
  settings: 'M3 6h8M15 6h2M3 14h2M9 14h8M13 4v4M7 12v4',
  quit: 'M10 3v6M6 5.300a6 6 0 1 0 8 0',
  file: 'M5.500 2.800h6l3.500 3.500v11h-9.500zM11.300 3v3.500h3.500',
  image: 'M3 4.500h14v11H3zM3 13l4-4 3.500 3.500L13 10l4 4M13.200 7.600v.2',
  video: 'M2.800 5.500h9.700v9H2.800zM12.500 9l4.700-2.800v7.600L12.500 11',
  audio: 'M7.500 14.500V5l8.500-1.700v9.500M7.500 14.500a2 1.800 0 1 1-4 0 2 1.800 0 0 1 4 0zM16 12.800a2 1.800 0 1 1-4 0 2 1.800 0 0 1 4 0z',
  archive: 'M3 4h14v3.500H3zM4.200 7.500v8.700h11.600V7.500M8 10.500h4',
  text: 'M5.500 2.800h6l3.500 3.500v11h-9.500zM11.300 3v3.500h3.500M7.800 10h4.600M7.800 13h4.600',
  folder: 'M2.800 5.200h5l1.600 2h7.800v8.600H2.800z',
  add: 'M10 4v12M4 10h12',
  remove: 'M5 5l10 10M15 5 5 15',
  pause: 'M7 4.500v11M13 4.500v11',
  resume: 'M6.500 4.200 15 10l-8.500 5.800z',
  retry: 'M15.800 8A6.200 6.200 0 1 0 16 11.500M16 4.200V8h-3.800',
  warning: 'M10 3.200 17.500 16.400h-15zM10 8v3.800M10 14v.2',
  check: 'M4 10.500l4 4 8-9',
  chevron: 'M6 8l4 4 4-4',
  cloud: 'M5.800 15.200a3.400 3.400 0 0 1-.3-6.800 4.700 4.700 0 0 1 9-.5 3.700 3.700 0 0 1-.3 7.300zM10 13V9M8.300 10.500 10 8.800l1.700 1.700',
};

/** Replaces the drawing of an existing icon. */
export function changeIcon(svg, name) {
  svg.setAttribute('class', `icon icon-${name}`);
  svg.firstChild.setAttribute('d', PATHS[name]);
}

/** A decorative icon; text beside it states its meaning. */
export function icon(name) {
  const svg = document.createElementNS('http://www.w3.org/2000/svg', 'svg');
  svg.setAttribute('viewBox', '0 0 20 20');
  svg.setAttribute('class', `icon icon-${name}`);
  svg.setAttribute('aria-hidden', 'true');
  const path = document.createElementNS('http://www.w3.org/2000/svg', 'path');
  path.setAttribute('d', PATHS[name]);
  svg.append(path);
  return svg;
}
