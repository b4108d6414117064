// The libraries that index.html loads as classic scripts, for modules to import.
export const { Backbone, _, $ } = globalThis;
