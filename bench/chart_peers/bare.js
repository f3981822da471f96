// A page without a chart: what the browser takes by itself.

export function open() {
  return { tick() {}, values: () => [], bars: () => 0, close() {} };
}
