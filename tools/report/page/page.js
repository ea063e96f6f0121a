// The viewer: a picture over its source or its earlier state, parted by a
// slider. Without it, links open the pictures.
'use strict';
{
  const find = (id) => document.getElementById(id);
  const viewer = find('viewer'), stage = find('stage'), pair = find('pair');
  const before = find('before'), after = find('after');
  const position = find('position'), fullSize = find('full-size');
  const shots = [...document.querySelectorAll('a[data-before]')];
  let shown = 0;

  const isFullSize = () => fullSize.getAttribute('aria-pressed') === 'true';

  // The slider spans the part of the picture that can be seen.
  const part = () => {
    const picture = pair.getBoundingClientRect();
    const seen = stage.getBoundingClientRect();
    const left = Math.max(picture.left, seen.left);
    const right = Math.min(picture.right, seen.right);
    const at = left + (right - left) * position.value / 100;
    pair.style.setProperty('--split', `${at - picture.left}px`);
  };

  // One to one, a pixel of the picture is one of the screen, and the focus is
  // in the middle.
  const scale = () => {
    const width = after.naturalWidth, height = after.naturalHeight;
    if (width === 0 || !viewer.open) return;
    const fit = Math.min(stage.clientWidth / width, stage.clientHeight / height);
    const factor = isFullSize() ? 1 / window.devicePixelRatio : fit;
    before.style.width = after.style.width = `${width * factor}px`;
    before.style.height = after.style.height = `${height * factor}px`;
    part();
  };

  const show = (index) => {
    shown = (index + shots.length) % shots.length;
    const { dataset, href } = shots[shown];
    find('viewer-title').textContent = dataset.name;
    find('before-name').textContent = dataset.beforeName;
    find('after-name').textContent = dataset.afterName;
    before.src = dataset.before;
    before.alt = `${dataset.name}, ${dataset.beforeName}`;
    after.src = href;
    after.alt = `${dataset.name}, ${dataset.afterName}`;
    if (!viewer.open) viewer.showModal();
    scale();
  };

  // Where the picture was pressed, or is dragged, the two part.
  const drag = (event) => {
    if (event.buttons !== 1) return;
    const picture = pair.getBoundingClientRect();
    const seen = stage.getBoundingClientRect();
    const left = Math.max(picture.left, seen.left);
    const right = Math.min(picture.right, seen.right);
    position.value = 100 * (event.clientX - left) / (right - left);
    part();
  };

  shots.forEach((shot, index) => shot.addEventListener('click', (event) => {
    if (event.ctrlKey || event.metaKey || event.shiftKey) return;
    event.preventDefault();
    show(index);
    position.focus();
  }));
  after.addEventListener('load', scale);
  position.addEventListener('input', part);
  stage.addEventListener('scroll', part);
  window.addEventListener('resize', scale);
  pair.addEventListener('pointerdown', drag);
  pair.addEventListener('pointermove', drag);
  pair.addEventListener('dragstart', (event) => event.preventDefault());
  fullSize.addEventListener('click', () => {
    fullSize.setAttribute('aria-pressed', String(!isFullSize()));
    scale();
    const { left, top } = shots[shown].dataset;
    stage.scrollLeft = pair.offsetWidth * left / 100 - stage.clientWidth / 2;
    stage.scrollTop = pair.offsetHeight * top / 100 - stage.clientHeight / 2;
  });
  find('previous').addEventListener('click', () => show(shown - 1));
  find('next').addEventListener('click', () => show(shown + 1));
  find('close').addEventListener('click', () => viewer.close());
}
