// Behind a search, shows the place of the page that has the most of its words.
window.addEventListener("load", () => setTimeout(() => {
  const words = (place) => new Set([...place.querySelectorAll(".highlighted")].map((mark) => mark.textContent.toLowerCase())).size;
  const places = [...document.querySelectorAll("article :is(h1, h2, h3, h4, p, li, tr, pre)")];
  const best = places.reduce((one, other) => words(other) > words(one) ? other : one, places[0]);
  if (!location.hash && words(best)) best.scrollIntoView({ block: "center" });
}, 50));  // Sphinx marks them after 10 ms
