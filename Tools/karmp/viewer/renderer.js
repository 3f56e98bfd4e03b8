// Draws batches with WebGL 2, and tells which entity is at a pixel.

const Hovered = 1;
const Selected = 2;
const Faded = 4;

const solidVertex = `#version 300 es
layout(location = 0) in vec3 position;
layout(location = 1) in vec3 normal;
layout(location = 2) in vec3 columnX;
layout(location = 3) in vec3 columnY;
layout(location = 4) in vec3 columnZ;
layout(location = 5) in vec3 origin;
layout(location = 6) in uvec2 tag;
uniform mat4 camera;
out vec3 outward;
flat out uvec2 owner;
void main() {
  // Normals go with the cofactors of the placement.
  outward = normal.x * cross(columnY, columnZ) + normal.y * cross(columnZ, columnX) +
    normal.z * cross(columnX, columnY);
  owner = tag;
  gl_Position = camera * vec4(origin + mat3(columnX, columnY, columnZ) * position, 1.0);
}`;

const lineVertex = `#version 300 es
layout(location = 0) in vec2 corner;
layout(location = 2) in vec3 start;
layout(location = 3) in vec3 stop;
layout(location = 4) in float width;
layout(location = 6) in uvec2 tag;
uniform mat4 camera;
uniform vec2 pixels;
uniform vec2 widening; // factor and amount
out vec3 outward;
flat out uvec2 owner;
vec4 inFront(vec4 a, vec4 b) {
  float near = 1e-6 * abs(b.w);
  return a.w > near ? a : mix(a, b, (near - a.w) / (b.w - a.w));
}
void main() {
  vec4 a = camera * vec4(start, 1.0);
  vec4 b = camera * vec4(stop, 1.0);
  vec4 from = inFront(a, b);
  vec4 to = inFront(b, a);
  vec2 way = (to.xy / to.w - from.xy / from.w) * pixels;
  way = dot(way, way) > 1e-12 ? normalize(way) : vec2(1.0, 0.0);
  vec4 at = corner.x > 0.0 ? to : from;
  float wide = width * widening.x + widening.y;
  vec2 shift = (vec2(-way.y, way.x) * corner.y + way * corner.x * 0.5) * wide / pixels;
  outward = vec3(0.0);
  owner = tag;
  gl_Position = at + vec4(shift * at.w, -2e-5 * at.w, 0.0);
}`;

const colourFragment = `#version 300 es
precision highp float;
in vec3 outward;
flat in uvec2 owner;
uniform highp usampler2D states;
uniform vec3 palette[32];
uniform vec3 back;
uniform vec3 mark;
uniform vec3 viewer;
uniform vec3 light;
uniform float opacity;
out vec4 colour;
void main() {
  uint state = owner.x == 16777215u ? 0u : texelFetch(states, ivec2(owner.x % 1024u, owner.x / 1024u), 0).r;
  uint own = owner.y;
  vec3 base = own < 16777216u ? palette[own] :
    vec3((uvec3(own) >> uvec3(16u, 8u, 0u)) & 255u) / 255.0;
  if ((state & 2u) != 0u)
    base = mix(base, mark, 0.85);
  float alpha = opacity;
  float size = length(outward);
  if (size > 0.0) {
    vec3 n = outward / size;
    if (dot(n, viewer) < 0.0)
      n = -n;
    float facing = dot(n, viewer);
    float shine = pow(max(dot(n, normalize(light + viewer)), 0.0), 40.0);
    base = base * (0.5 + 0.3 * max(dot(n, light), 0.0) + 0.28 * facing) + 0.14 * shine;
    if (opacity < 1.0)
      alpha += 0.3 * (1.0 - facing);
  }
  if ((state & 1u) != 0u)
    base = mix(base, vec3(1.0), 0.28);
  if ((state & 4u) != 0u)
    base = mix(base, back, 0.86);
  colour = vec4(base, alpha);
}`;

const pickFragment = `#version 300 es
precision highp float;
flat in uvec2 owner;
in vec3 outward;
out vec4 colour;
void main() {
  if (owner.x == 16777215u)
    discard;
  uint id = owner.x + 1u;
  colour = vec4(float(id & 255u), float((id >> 8) & 255u), float(id >> 16), 255.0) / 255.0;
}`;

/// The picture in a canvas. Throws when there is no WebGL 2.
class Renderer {
  constructor(canvas, drawing, entityCount) {
    this.canvas = canvas;
    const gl = canvas.getContext("webgl2", {antialias: true, alpha: false, powerPreference: "high-performance"});
    if (!gl)
      throw new Error("no WebGL 2");
    this.gl = gl;
    this.hiddenLayers = new Set();
    this.isPickStale = true;
    this.programs = {
      solid: this.program(solidVertex, colourFragment), line: this.program(lineVertex, colourFragment),
      solidPick: this.program(solidVertex, pickFragment), linePick: this.program(lineVertex, pickFragment)};
    this.solids = [...drawing.batches.values()].map(batch => this.solid(batch));
    this.lines = [...drawing.lines].map(([layer, lines]) => this.line(layer, lines));
    this.states = new Uint8Array(1024 * Math.max(1, Math.ceil(entityCount / 1024)));
    this.stateTexture = gl.createTexture();
    gl.bindTexture(gl.TEXTURE_2D, this.stateTexture);
    gl.texParameteri(gl.TEXTURE_2D, gl.TEXTURE_MIN_FILTER, gl.NEAREST);
    gl.texParameteri(gl.TEXTURE_2D, gl.TEXTURE_MAG_FILTER, gl.NEAREST);
    this.uploadStates();
  }

  program(vertex, fragment) {
    const gl = this.gl;
    const program = gl.createProgram();
    for (const [type, source] of [[gl.VERTEX_SHADER, vertex], [gl.FRAGMENT_SHADER, fragment]]) {
      const shader = gl.createShader(type);
      gl.shaderSource(shader, source);
      gl.compileShader(shader);
      gl.attachShader(program, shader);
    }
    gl.linkProgram(program);
    if (!gl.getProgramParameter(program, gl.LINK_STATUS))
      throw new Error(gl.getProgramInfoLog(program) || "the shaders do not link");
    const places = new Map();
    const count = gl.getProgramParameter(program, gl.ACTIVE_UNIFORMS);
    for (let i = 0; i < count; ++i) {
      const name = gl.getActiveUniform(program, i).name;
      places.set(name.replace("[0]", ""), gl.getUniformLocation(program, name));
    }
    return {program, at: name => places.get(name) || null};
  }

  // Attributes as [location, floats], one after the other, and a tag of two numbers behind them.
  instances(count, floats, write, attributes) {
    const gl = this.gl;
    const stride = 4 * (floats + 2);
    const bytes = new ArrayBuffer(stride * count);
    const numbers = new Float32Array(bytes);
    const tags = new Uint32Array(bytes);
    for (let i = 0; i < count; ++i)
      write(i, numbers, tags, i * (floats + 2));
    gl.bindBuffer(gl.ARRAY_BUFFER, gl.createBuffer());
    gl.bufferData(gl.ARRAY_BUFFER, bytes, gl.STATIC_DRAW);
    let offset = 0;
    for (const [location, size] of attributes) {
      gl.enableVertexAttribArray(location);
      gl.vertexAttribPointer(location, size, gl.FLOAT, false, stride, offset);
      gl.vertexAttribDivisor(location, 1);
      offset += 4 * size;
    }
    gl.enableVertexAttribArray(6);
    gl.vertexAttribIPointer(6, 2, gl.UNSIGNED_INT, stride, offset);
    gl.vertexAttribDivisor(6, 1);
  }

  corners(location, size, numbers) {
    const gl = this.gl;
    gl.bindBuffer(gl.ARRAY_BUFFER, gl.createBuffer());
    gl.bufferData(gl.ARRAY_BUFFER, new Float32Array(numbers), gl.STATIC_DRAW);
    gl.enableVertexAttribArray(location);
    gl.vertexAttribPointer(location, size, gl.FLOAT, false, 0, 0);
  }

  solid({layer, opacity, mesh, instances}) {
    const gl = this.gl;
    const array = gl.createVertexArray();
    gl.bindVertexArray(array);
    this.corners(0, 3, mesh.positions);
    this.corners(1, 3, mesh.normals);
    this.instances(instances.length, 12, (i, numbers, tags, at) => {
      numbers.set(instances[i].placement, at);
      tags.set([instances[i].entity, instances[i].colour], at + 12);
    }, [[2, 3], [3, 3], [4, 3], [5, 3]]);
    gl.bindBuffer(gl.ELEMENT_ARRAY_BUFFER, gl.createBuffer());
    gl.bufferData(gl.ELEMENT_ARRAY_BUFFER, new Uint32Array(mesh.triangles), gl.STATIC_DRAW);
    return {layer, opacity, array, count: mesh.triangles.length, instances: instances.length};
  }

  line(layer, lines) {
    const gl = this.gl;
    const array = gl.createVertexArray();
    gl.bindVertexArray(array);
    this.corners(0, 2, [-1, -1, 1, -1, -1, 1, 1, 1]);
    this.instances(lines.length, 7, (i, numbers, tags, at) => {
      numbers.set([...lines[i].from, ...lines[i].to, lines[i].width], at);
      tags.set([lines[i].entity, lines[i].colour], at + 7);
    }, [[2, 3], [3, 3], [4, 1]]);
    return {layer, array, instances: lines.length};
  }

  uploadStates() {
    const gl = this.gl;
    gl.bindTexture(gl.TEXTURE_2D, this.stateTexture);
    gl.pixelStorei(gl.UNPACK_ALIGNMENT, 1);
    gl.texImage2D(gl.TEXTURE_2D, 0, gl.R8UI, 1024, this.states.length / 1024, 0, gl.RED_INTEGER,
      gl.UNSIGNED_BYTE, this.states);
  }

  // Fits the picture to the canvas on the page.
  resize() {
    const ratio = Math.min(window.devicePixelRatio || 1, 2);
    const width = Math.max(1, Math.round(this.canvas.clientWidth * ratio));
    const height = Math.max(1, Math.round(this.canvas.clientHeight * ratio));
    if (this.canvas.width !== width || this.canvas.height !== height) {
      this.canvas.width = width;
      this.canvas.height = height;
    }
    this.ratio = ratio;
  }
  get aspect() { return this.canvas.width / this.canvas.height; }

  use(shader, matrix, widening, theme, camera) {
    const gl = this.gl;
    gl.useProgram(shader.program);
    gl.uniformMatrix4fv(shader.at("camera"), false, matrix);
    gl.uniform2f(shader.at("pixels"), this.canvas.width, this.canvas.height);
    gl.uniform2fv(shader.at("widening"), widening);
    if (theme === null)
      return;
    gl.uniform1i(shader.at("states"), 0);
    const colours = new Float32Array(96);
    theme.colours.forEach((colour, i) => colours.set(parts(colour), 3 * i));
    gl.uniform3fv(shader.at("palette"), colours);
    gl.uniform3fv(shader.at("back"), parts(theme.back));
    gl.uniform3fv(shader.at("mark"), parts(theme.mark));
    const {right, up, back} = camera.directions;
    gl.uniform3fv(shader.at("viewer"), back);
    gl.uniform3fv(shader.at("light"), unit(add(add(times(up, 0.8), times(right, -0.45)), times(back, 0.55))));
  }

  drawSolids(shader, areClear) {
    const gl = this.gl;
    for (const batch of this.solids) {
      if (batch.opacity < 1 !== areClear || this.hiddenLayers.has(batch.layer))
        continue;
      gl.uniform1f(shader.at("opacity"), batch.opacity);
      gl.bindVertexArray(batch.array);
      gl.drawElementsInstanced(gl.TRIANGLES, batch.count, gl.UNSIGNED_INT, 0, batch.instances);
    }
  }

  drawLines(shader) {
    const gl = this.gl;
    gl.uniform1f(shader.at("opacity"), 1);
    for (const batch of this.lines) {
      if (this.hiddenLayers.has(batch.layer))
        continue;
      gl.bindVertexArray(batch.array);
      gl.drawArraysInstanced(gl.TRIANGLE_STRIP, 0, 4, batch.instances);
    }
  }

  draw(camera, offsetMatrix, theme) {
    const gl = this.gl;
    this.matrix = offsetMatrix;
    this.isPickStale = true;
    gl.bindFramebuffer(gl.FRAMEBUFFER, null);
    gl.viewport(0, 0, this.canvas.width, this.canvas.height);
    gl.clearColor(...parts(theme.back), 1);
    gl.clear(gl.COLOR_BUFFER_BIT | gl.DEPTH_BUFFER_BIT);
    gl.enable(gl.DEPTH_TEST);
    gl.activeTexture(gl.TEXTURE0);
    gl.bindTexture(gl.TEXTURE_2D, this.stateTexture);
    const {solid, line} = this.programs;
    this.use(solid, this.matrix, [1, 0], theme, camera);
    this.drawSolids(solid, false);
    this.use(line, this.matrix, [this.ratio, 0], theme, camera);
    this.drawLines(line);
    this.use(solid, this.matrix, [1, 0], theme, camera);
    gl.enable(gl.BLEND);
    gl.blendFunc(gl.SRC_ALPHA, gl.ONE_MINUS_SRC_ALPHA);
    gl.depthMask(false);
    this.drawSolids(solid, true);
    gl.depthMask(true);
    gl.disable(gl.BLEND);
  }

  // The same picture with entities in place of colours, when it is needed first.
  drawPick() {
    const gl = this.gl;
    const {width, height} = this.canvas;
    if (!this.pickBuffer || this.pickBuffer.width !== width || this.pickBuffer.height !== height)
      this.makePickBuffer(width, height);
    gl.bindFramebuffer(gl.FRAMEBUFFER, this.pickBuffer.frame);
    gl.viewport(0, 0, width, height);
    gl.clearColor(0, 0, 0, 0);
    gl.clear(gl.COLOR_BUFFER_BIT | gl.DEPTH_BUFFER_BIT);
    const {solidPick, linePick} = this.programs;
    this.use(solidPick, this.matrix, [1, 0], null, null);
    this.drawSolids(solidPick, false);
    this.use(linePick, this.matrix, [this.ratio, 5 * this.ratio], null, null);
    this.drawLines(linePick);
    this.use(solidPick, this.matrix, [1, 0], null, null);
    this.drawSolids(solidPick, true);
    this.isPickStale = false;
  }

  makePickBuffer(width, height) {
    const gl = this.gl;
    if (this.pickBuffer) {
      gl.deleteFramebuffer(this.pickBuffer.frame);
      gl.deleteRenderbuffer(this.pickBuffer.colour);
      gl.deleteRenderbuffer(this.pickBuffer.depth);
    }
    const [frame, colour, depth] = [gl.createFramebuffer(), gl.createRenderbuffer(), gl.createRenderbuffer()];
    gl.bindFramebuffer(gl.FRAMEBUFFER, frame);
    gl.bindRenderbuffer(gl.RENDERBUFFER, colour);
    gl.renderbufferStorage(gl.RENDERBUFFER, gl.RGBA8, width, height);
    gl.framebufferRenderbuffer(gl.FRAMEBUFFER, gl.COLOR_ATTACHMENT0, gl.RENDERBUFFER, colour);
    gl.bindRenderbuffer(gl.RENDERBUFFER, depth);
    gl.renderbufferStorage(gl.RENDERBUFFER, gl.DEPTH_COMPONENT24, width, height);
    gl.framebufferRenderbuffer(gl.FRAMEBUFFER, gl.DEPTH_ATTACHMENT, gl.RENDERBUFFER, depth);
    this.pickBuffer = {frame, colour, depth, width, height};
  }

  // The entity at a point of the page's canvas, -1 without one.
  pick(x, y) {
    const gl = this.gl;
    if (!this.matrix)
      return -1;
    if (this.isPickStale)
      this.drawPick();
    gl.bindFramebuffer(gl.FRAMEBUFFER, this.pickBuffer.frame);
    const pixel = new Uint8Array(4);
    gl.readPixels(Math.floor(x * this.ratio), this.canvas.height - 1 - Math.floor(y * this.ratio), 1, 1,
      gl.RGBA, gl.UNSIGNED_BYTE, pixel);
    gl.bindFramebuffer(gl.FRAMEBUFFER, null);
    return pixel[0] + 256 * pixel[1] + 65536 * pixel[2] - 1;
  }
}
