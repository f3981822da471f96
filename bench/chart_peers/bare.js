// A page without a chart: what the browser takes by itself, and for a frame in which a small square changes.

export function open(element) {
  const square = document.createElement("div");
  square.style.cssText = "width: 10px; height: 10px";
  element.append(square);
  let light = false;
  return {
    tick() {
      light = !light;
      square.style.background = light ? "#ffffff" : "#303030";
    },
    values: () => [],
    bars: () => 0,
    close() { square.remove(); },
  };
}
