// SPDX-License-Identifier: GPL-3.0-or-later
// Rows and columns of tables whose cells may span several of either. All goes by the grid that the cells lie on.
window.tmTables = (() => {
  const unique = list => [...new Set(list)].filter(Boolean);

  // The cell at each place; a cell never reaches out of its group of rows.
  function gridOf(table) {
    const rows = [...table.rows];
    const grid = rows.map(() => []);
    rows.forEach((row, r) => {
      const left = row.parentElement.rows.length - row.sectionRowIndex;
      let c = 0;
      for (const cell of row.cells) {
        while (grid[r][c]) ++c;
        const height = Math.min(cell.rowSpan || left, left);
        for (let down = 0; down < height; ++down)
          for (let across = 0; across < cell.colSpan; ++across) grid[r + down][c + across] ??= cell;
        c += cell.colSpan;
      }
    });
    return grid;
  }
  function setSpan(cell, name, value) {
    if (value > 1) cell[name] = value;
    else cell.removeAttribute(name);
  }
  // A span of 0 reaches to the end, wherever that is.
  function grow(cell, by) {
    if (cell.rowSpan > 0) setSpan(cell, 'rowSpan', cell.rowSpan + by);
  }
  // The rows, or the columns, that the cells lie on, in order.
  const rowsOf = (grid, cells) => grid.map((row, r) => row.some(cell => cells.includes(cell)) ? r : -1).filter(r => r >= 0);
  function columnsOf(grid, cells) {
    const found = new Set();
    for (const row of grid) row.forEach((cell, c) => { if (cells.includes(cell)) found.add(c); });
    return [...found].sort((a, b) => a - b);
  }
  function emptyCell(tag) {
    const cell = document.createElement(tag);
    cell.append(document.createElement('br'));
    return cell;
  }
  // Puts a cell into a row where its column is.
  function place(grid, row, r, cell, column) {
    const behind = [...row.cells].find(other => grid[r].indexOf(other) >= column);
    if (behind) behind.before(cell);
    else row.append(cell);
  }
  const columnElements = table => table.querySelectorAll(':scope > colgroup > col');

  // -- rows
  function insertRow(cells, below) {
    const table = cells[0].closest('table');
    const grid = gridOf(table);
    const chosen = rowsOf(grid, cells);
    const r = below ? chosen[chosen.length - 1] : chosen[0];
    const beside = below ? grid[r + 1] : grid[r - 1];
    const row = document.createElement('tr');
    for (let c = 0; c < grid[r].length;) {
      const model = grid[r][c];
      const width = model ? grid[r].lastIndexOf(model) - c + 1 : 1;
      if (model && beside?.[c] === model) grow(model, 1);
      else {
        const made = emptyCell('td');
        setSpan(made, 'colSpan', width);
        row.append(made);
      }
      c += width;
    }
    const model = table.rows[r];
    const group = model.parentElement;
    const leavesHead = below && group.tagName === 'THEAD' && model === group.rows[group.rows.length - 1];
    if (leavesHead && table.tBodies[0]) table.tBodies[0].prepend(row);
    else model[below ? 'after' : 'before'](row);
    return row;
  }
  function removeRow(table, r) {
    const grid = gridOf(table);
    for (const cell of unique(grid[r])) {
      const column = grid[r].indexOf(cell);
      const reachesOn = grid[r + 1]?.[column] === cell;
      if (cell.parentElement !== table.rows[r] || reachesOn) grow(cell, -1);
      if (cell.parentElement === table.rows[r] && reachesOn) place(grid, table.rows[r + 1], r + 1, cell, column);
    }
    table.rows[r].remove();
  }
  // Gives where the caret goes, null for a table of which nothing is left.
  function removeRows(cells) {
    const table = cells[0].closest('table');
    const grid = gridOf(table);
    const rows = rowsOf(grid, cells);
    const column = columnsOf(grid, cells)[0];
    for (const r of [...rows].reverse()) removeRow(table, r);
    if (!table.rows.length) return null;
    const next = Math.min(rows[0], table.rows.length - 1);
    return gridOf(table)[next][column] || table.rows[next];
  }

  // -- columns
  function insertColumn(cells, after) {
    const table = cells[0].closest('table');
    const grid = gridOf(table);
    const chosen = columnsOf(grid, cells);
    const at = after ? chosen[chosen.length - 1] + 1 : chosen[0];
    const widened = new Set();
    [...table.rows].forEach((row, r) => {
      const [left, right] = [grid[r][at - 1], grid[r][at]];
      if (left && left === right) widened.add(left);
      else if (grid[r].length >= at) place(grid, row, r, emptyCell((after ? left : right)?.tagName ?? 'td'), at);
    });
    for (const cell of widened) cell.colSpan += 1;
    const columns = columnElements(table);
    columns[after ? at - 1 : at]?.[after ? 'after' : 'before'](columns[after ? at - 1 : at].cloneNode(false));
  }
  function removeColumns(cells) {
    const table = cells[0].closest('table');
    const grid = gridOf(table);
    const row = rowsOf(grid, cells)[0];
    const columns = columnsOf(grid, cells);
    for (const c of [...columns].reverse()) {
      for (const cell of unique(gridOf(table).map(each => each[c]))) {
        if (cell.colSpan > 1) setSpan(cell, 'colSpan', cell.colSpan - 1);
        else cell.remove();
      }
      columnElements(table)[c]?.remove();
    }
    const left = gridOf(table)[row];
    if (![...table.rows].some(each => each.cells.length)) return null;
    return left[Math.min(columns[0], left.length - 1)] || table.rows[row];
  }
  return {insertRow, removeRows, insertColumn, removeColumns};
})();
