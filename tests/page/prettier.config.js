// How the page's script and style are laid out.

export default { printWidth: 120 };
