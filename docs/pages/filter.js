// A box above the list of members that leaves those which hold every typed word. Without script
// there is no box, and the list is whole. Plain old JavaScript: the host's viewer is an old browser.
(function () {
  var list = document.getElementById('members');
  var entries = list.getElementsByTagName('li');
  var form = document.createElement('p');
  form.id = 'filter';
  form.innerHTML = '<label for="words">Filter</label> <input id="words" type="search" ' +
    'autocomplete="off" spellcheck="false"> <span id="shown" aria-live="polite"></span>';
  list.parentNode.insertBefore(form, list);

  var input = document.getElementById('words');
  function show() {
    var words = input.value.toLowerCase().split(/\s+/), shown = 0;
    for (var i = 0; i < entries.length; i++) {
      var text = entries[i].textContent.toLowerCase(), fits = true;
      for (var j = 0; j < words.length; j++) fits = fits && text.indexOf(words[j]) >= 0;
      entries[i].style.display = fits ? '' : 'none';
      if (fits) shown++;
    }
    document.getElementById('shown').innerHTML = shown + ' of ' + entries.length;
  }
  input.oninput = input.onsearch = input.onkeyup = show;
  show();
}());
