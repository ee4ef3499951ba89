// What a test asks of a page that stands in a browser.
(() => {
  const shown = element => element.checkVisibility({visibilityProperty: true}) && element.getClientRects().length > 0;
  const nameOf = element => element.localName + (element.id ? '#' + element.id : '') +
      (typeof element.className === 'string' && element.className ? '.' + element.className.trim().replace(/\s+/g, '.') : '') +
      ` "${element.textContent.trim().slice(0, 30)}"`;
  const colourOf = text => {
    const [red, green, blue, alpha = 1] = text.match(/[\d.]+/g)?.map(Number) ?? [0, 0, 0, 0];
    return {channels: [red, green, blue], alpha};
  };
  const over = (upper, lower) => ({alpha: 1, channels: upper.channels.map((c, i) => c * upper.alpha + lower.channels[i] * (1 - upper.alpha))});
  const luminance = ({channels}) => channels.map(c => c / 255)
      .map(c => c <= 0.04045 ? c / 12.92 : ((c + 0.055) / 1.055) ** 2.4)
      .reduce((sum, c, i) => sum + c * [0.2126, 0.7152, 0.0722][i], 0);
  const contrast = (a, b) => {
    const [dark, light] = [luminance(a), luminance(b)].sort((x, y) => x - y);
    return (light + 0.05) / (dark + 0.05);
  };
  const canvas = () => colourOf(matchMedia('(prefers-color-scheme: dark)').matches ? '18, 18, 18' : '255, 255, 255');

  const groundOf = element => {
    if (!element) return canvas();
    const own = colourOf(getComputedStyle(element).backgroundColor);
    return own.alpha === 1 ? own : over(own, groundOf(element.parentElement));
  };

  // The shape of a picture that lies right behind a text of it.
  const groundInPicture = text => {
    const {left, right, top, bottom} = text.getBoundingClientRect();
    const [x, y] = [(left + right) / 2, (top + bottom) / 2];
    const picture = text.closest('svg');
    let ground = groundOf(picture);
    for (const shape of picture.querySelectorAll('rect, circle, path')) {
      if (!(shape.compareDocumentPosition(text) & Node.DOCUMENT_POSITION_FOLLOWING)) break;
      const box = shape.getBoundingClientRect();
      const {fill} = getComputedStyle(shape);
      if (fill !== 'none' && x > box.left && x < box.right && y > box.top && y < box.bottom) ground = over(colourOf(fill), ground);
    }
    return ground;
  };

  const textsOf = function* () {
    for (const element of document.querySelectorAll('body *')) {
      if (!shown(element) || element.closest(':disabled')) continue;
      const style = getComputedStyle(element);
      const picture = element.closest('svg');
      if ([...element.childNodes].some(node => node.nodeType === Node.TEXT_NODE && node.data.trim()) || element.matches('input, select')) {
        yield [element, colourOf(picture ? style.fill : style.color), picture ? groundInPicture(element) : groundOf(element)];
      }
      if (element.placeholder) yield [element, colourOf(getComputedStyle(element, '::placeholder').color), groundOf(element)];
    }
  };

  const overflowing = () => {
    const {scrollWidth, clientWidth} = document.documentElement;
    if (scrollWidth <= clientWidth) return [];
    const last = [...document.querySelectorAll('body *')].filter(element => element.getBoundingClientRect().right > clientWidth + 1).at(-1);
    return [`the page is ${scrollWidth} wide in a window of ${clientWidth}: ${last ? nameOf(last) : ''}`];
  };

  const weak = () => [...textsOf()].map(([element, ink, ground]) => [element, contrast(over(ink, ground), ground)])
      .filter(([, ratio]) => ratio < 4.5).map(([element, ratio]) => `contrast ${ratio.toFixed(2)}: ${nameOf(element)}`);

  // Texts of pictures that are cut off at its edges, or that a later one covers.
  const cut = () => [...document.querySelectorAll('svg')].filter(shown).flatMap(picture => {
    const frame = picture.getBoundingClientRect();
    const texts = [...picture.querySelectorAll('text')].map(text => [text, text.getBoundingClientRect()]);
    return texts.filter(([, box], i) => box.left < frame.left - 1 || box.right > frame.right + 1 || box.bottom > frame.bottom + 2 ||
        texts.slice(i + 1).some(([, other]) => Math.min(box.right, other.right) - Math.max(box.left, other.left) > 1 &&
            Math.min(box.bottom, other.bottom) - Math.max(box.top, other.top) > box.height / 3))
        .map(([text]) => `cut off or covered in a picture: ${nameOf(text)}`);
  });

  window.probes = {
    look: () => [...new Set([...overflowing(), ...weak(), ...cut()])],
    /** The controls that the keyboard has to reach, each marked with a number. */
    controls: () => [...document.querySelectorAll('a[href], button, input, select, textarea, [tabindex="0"]')].filter(shown)
        .map((element, i) => { element.dataset.control = i; return nameOf(element); }),
    /** Which control has the focus, or -1, and whether one sees it. */
    focused: () => {
      const element = document.activeElement;
      if (!element || element === document.body) return [-1, true, ''];
      const ring = [element, ...element.labels ?? []].some(one => {
        const style = getComputedStyle(one);
        return style.outlineStyle !== 'none' && parseFloat(style.outlineWidth) >= 2 && parseFloat(style.opacity) === 1 &&
            one.getBoundingClientRect().width > 4 && contrast(colourOf(style.outlineColor), groundOf(one.parentElement)) >= 3;
      });
      return [element.dataset.control ? Number(element.dataset.control) : -1, ring, nameOf(element)];
    },
  };
})();
