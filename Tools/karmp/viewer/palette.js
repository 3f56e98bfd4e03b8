// The colours of what is drawn, light and dark, by the number that drawings hold.

const Colour = {
  ground: 0, joint: 1, axis: 2, spring: 3, bushing: 4, geometry: 5, plane: 6, xAxis: 7, yAxis: 8,
  zAxis: 9, grid: 10, gridMain: 11, coupling: 12, fixed: 13, mass: 14, joined: 15,
  motor: 16, sensor: 17, firstBody: 18,
};
const BodyColours = 12;

const palettes = {
  light: {
    back: "#f6f7f9", mark: "#f76707",
    colours: [
      "#aeb6c1", "#5c6675", "#e8590c", "#2b8a3e", "#9c6b30", "#495057", "#4c8bd0", "#d6336c",
      "#37a34a", "#2f6fde", "#e3e7ec", "#cfd6de", "#ae3ec9", "#98a2af", "#212529", "#8794a6",
      "#e03131", "#0c8599",
      "#3b82c4", "#4f9d69", "#8a63b8", "#3f9fa6", "#c25b86", "#8a9a2f", "#5566c0", "#9a7b5c",
      "#4fa8d1", "#9c4470", "#6f9c86", "#a48ad4"],
  },
  dark: {
    back: "#14181f", mark: "#ff8c1a",
    colours: [
      "#6c7685", "#aab4c2", "#ffa94d", "#69db7c", "#d9a866", "#adb5bd", "#4c8bd0", "#ff6b9a",
      "#69db7c", "#74a9ff", "#20262f", "#2f3742", "#e599f7", "#7b8695", "#f1f3f5", "#8a97a8",
      "#ff6b6b", "#3bc9db",
      "#62a3e0", "#74c08d", "#ad8bd8", "#5fc3ca", "#e382ab", "#b4c455", "#8291e6", "#bfa17f",
      "#7cc8ee", "#c76a9b", "#93c2ab", "#c6b1ef"],
  },
};

// No body has the colour that marks what is selected.
const bodyColour = number => Colour.firstBody + number % BodyColours;

// The number of a colour of the document's own, given as parts from 0 to 1.
const ownColour = rgb =>
  0x1000000 + rgb.slice(0, 3).reduce((all, part) => 256 * all + Math.round(255 * part), 0);

// Red, green and blue from 0 to 1.
const parts = colour =>
  [1, 3, 5].map(start => parseInt(colour.slice(start, start + 2), 16) / 255);
